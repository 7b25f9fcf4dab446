// The symbol table: functions, availability records and tests by name.

#include "vx/sym.h"

#include "session/symbols.h"
#include "talm/base.h"
#include "vx/err.h"
#include "vx/tools.h"

using namespace vx::session;

namespace {

constexpr int32_t unknownSymbol = 66;

// A memory check is due on the first of every so many look-ups.
constexpr int32_t getsPerCheck = 11;

template <typename Record> Record valueOr(NameTable<Record> &table, const char *name, Record missing)
{
    const Record *found = name ? table.find(name) : nullptr;
    return found ? *found : missing;
}

}

namespace vx::session {

void reportUnknownSymbol(const char *name)
{
    VxErrLogFmt(VxToolsErrID(), unknownSymbol, nullptr, 0, name);
}

}

void VxSymLog(const char *name, void *address)
{
    if (name)
        symbols().addresses.at(name) = address;
}

void VxSymLogFcn(const char *name, VxSymFcn function)
{
    VxSymLog(name, reinterpret_cast<void *>(function));
}

void VxSymLog2(const char *name, uint64_t attributes)
{
    if (name && !symbols().availability.find(name))
        symbols().availability.at(name) = attributes;
}

void VxSymLogTestFcn(const char *name, VxSymFcn function)
{
    if (name)
        symbols().tests.at(name) = function;
}

void VxSymLogOff(const char *name)
{
    if (!name)
        return;
    symbols().addresses.erase(name);
    symbols().availability.erase(name);
}

uint32_t VxSymGet(const char *name, void **out)
{
    if (!name || !out)
        return 2;
    Symbols &all = symbols();
    *out = valueOr<void *>(all.addresses, name, nullptr);
    if (!all.availability.find(name))
        return 2;
    bool due = all.getsSinceCheck == 0;
    all.getsSinceCheck = (all.getsSinceCheck + 1) % getsPerCheck;
    if (due)
        VxCheckMemory();
    return 0;
}

VxSymFcn VxSymGetFcn(const char *name)
{
    if (name && !symbols().addresses.find(name))
        reportUnknownSymbol(name);
    return VxSymGetFcnNoErr(name);
}

VxSymFcn VxSymGetFcnNoErr(const char *name)
{
    return reinterpret_cast<VxSymFcn>(valueOr<void *>(symbols().addresses, name, nullptr));
}

VxSymFcn VxSymGetTestFcn(const char *name)
{
    return valueOr<VxSymFcn>(symbols().tests, name, nullptr);
}

void VxSymExecAllTestFcns(void)
{
    auto &tests = symbols().tests;
    // A test may log further ones; those wait for the next run.
    auto test = tests.begin();
    for (size_t left = tests.size(); left > 0; --left, ++test) {
        bool good = test->record && test->record() != 0;
        EsPut(EsCategoryTools, good ? EsLevelInformation : EsLevelFailure, good ? "[Pass] %s" : "[Fail] %s",
              test->name.c_str());
    }
}
