// Session variables by name: integers and reals alike.

#include "vx/sym.h"

#include "session/symbols.h"

using namespace vx::session;

namespace {

template <typename T> void store(Variable<T> &variable, T value)
{
    variable.value = value;
    if (variable.bound)
        *variable.bound = value;
}

/** The plain variable that a module published under `name` by its address, or null. */
template <typename T> T *published(const char *name)
{
    void **address = symbols().addresses.find(name);
    return address ? static_cast<T *>(*address) : nullptr;
}

/** The hook first, then the variables, then what is published by address. */
template <typename T> bool get(Variables<T> &variables, const char *name, T &out)
{
    T value{};
    if (!name)
        return false;
    if (variables.getter && variables.getter(name, &value) != 0) {
        out = value;
        return true;
    }
    if (const Variable<T> *variable = variables.table.find(name)) {
        out = variable->bound ? *variable->bound : variable->value;
        return true;
    }
    const T *address = published<T>(name);
    if (address)
        out = *address;
    return address != nullptr;
}

template <typename T> bool set(Variables<T> &variables, const char *name, T value)
{
    if (!name)
        return false;
    if (variables.setter && variables.setter(name, value) != 0)
        return true;
    if (Variable<T> *variable = variables.table.find(name)) {
        store(*variable, value);
        return true;
    }
    T *address = published<T>(name);
    if (address)
        *address = value;
    return address != nullptr;
}

template <typename T> T getOrReport(Variables<T> &variables, const char *name)
{
    T value{};
    if (!get(variables, name, value) && name)
        reportUnknownSymbol(name);
    return value;
}

template <typename T> int32_t tryGet(Variables<T> &variables, const char *name, T *out)
{
    if (!name || !out)
        return 0;
    *out = T{};
    return get(variables, name, *out);
}

template <typename T> int32_t setOrReport(Variables<T> &variables, const char *name, T value)
{
    if (set(variables, name, value))
        return 1;
    if (name)
        reportUnknownSymbol(name);
    return 0;
}

template <typename T> void reset(Variables<T> &variables)
{
    for (auto &entry : variables.table)
        store(entry.record, entry.record.initial);
}

}

void VxSymLogInt(const char *name, int32_t value)
{
    if (name)
        symbols().ints.table.at(name) = {nullptr, value, value};
}

void VxSymLogDbl(const char *name, double value)
{
    if (name)
        symbols().reals.table.at(name) = {nullptr, value, value};
}

int32_t VxSymGetInt(const char *name)
{
    return getOrReport(symbols().ints, name);
}

int32_t VxSymTryGetInt(const char *name, int32_t *out)
{
    return tryGet(symbols().ints, name, out);
}

double VxSymGetDbl(const char *name)
{
    return getOrReport(symbols().reals, name);
}

int32_t VxSymTryGetDbl(const char *name, double *out)
{
    return tryGet(symbols().reals, name, out);
}

int32_t VxSymSetInt(const char *name, int32_t value)
{
    return setOrReport(symbols().ints, name, value);
}

int32_t VxSymSetDbl(const char *name, double value)
{
    return setOrReport(symbols().reals, name, value);
}

VxSymIntGetter VxSymSetIntGetter(VxSymIntGetter fn)
{
    return symbols().ints.getter = fn;
}

VxSymIntSetter VxSymSetIntSetter(VxSymIntSetter fn)
{
    return symbols().ints.setter = fn;
}

VxSymDblGetter VxSymSetDblGetter(VxSymDblGetter fn)
{
    return symbols().reals.getter = fn;
}

VxSymDblSetter VxSymSetDblSetter(VxSymDblSetter fn)
{
    return symbols().reals.setter = fn;
}

uint32_t VxSymGlobalReset(void)
{
    reset(symbols().reals);
    reset(symbols().ints);
    return 0;
}
