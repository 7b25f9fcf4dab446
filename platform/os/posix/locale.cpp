#include "platform/os/os.h"

#include <langinfo.h>
#include <locale.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <strings.h>

#include "platform/os/test_values.h"

namespace vx::os {

namespace {

std::atomic<void (*)(const char *)> debuggerSink{nullptr};

#ifdef VX_FAULTS
std::atomic<int32_t> testLocaleCodePage{-1};
#endif

locale_t cLocale() noexcept
{
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
}

/** This thread under the C locale for a scope. */
class UnderCLocale {
public:
    UnderCLocale() noexcept : previous_(uselocale(cLocale())) {}
    ~UnderCLocale() { uselocale(previous_); }
    UnderCLocale(const UnderCLocale &) = delete;
    UnderCLocale &operator=(const UnderCLocale &) = delete;

private:
    locale_t previous_;
};

struct Codeset {
    const char *name;
    int32_t codePage;
};

constexpr Codeset codesets[] = {
    {"UTF-8", 65001},      {"GBK", 936},       {"GB2312", 936},    {"GB18030", 936},   {"BIG5", 950},
    {"BIG5-HKSCS", 950},   {"EUC-KR", 949},    {"UHC", 949},       {"SHIFT_JIS", 932}, {"SJIS", 932},
    {"WINDOWS-31J", 932},  {"TIS-620", 874},   {"ISO-8859-1", 1252}, {"ISO-8859-15", 1252}, {"CP1250", 1250},
    {"CP1251", 1251},      {"CP1252", 1252},   {"CP1253", 1253},   {"CP1254", 1254},   {"CP1255", 1255},
    {"CP1256", 1256},      {"CP1257", 1257},   {"CP1258", 1258},
};

int32_t codePageOfUserLocale() noexcept
{
    // Asked of the environment, not of the process's locale, which a host may never have set.
    locale_t user = newlocale(LC_CTYPE_MASK, "", nullptr);
    if (!user)
        return 0;
    int32_t found = 0;
    const char *codeset = nl_langinfo_l(CODESET, user);
    for (const Codeset &known : codesets)
        if (strcasecmp(known.name, codeset) == 0)
            found = known.codePage;
    freelocale(user);
    return found;
}

}

int32_t localeCodePage() noexcept
{
#ifdef VX_FAULTS
    if (int32_t set = testLocaleCodePage; set >= 0)
        return set;
#endif
    return codePageOfUserLocale();
}

int32_t formatArgs(char *out, size_t size, const char *format, va_list args) noexcept
{
    UnderCLocale here;
    return std::vsnprintf(out, size, format, args);
}

int32_t printArgs(FILE *stream, const char *format, va_list args) noexcept
{
    UnderCLocale here;
    return std::vfprintf(stream, format, args);
}

double parseDouble(const char *text, char **end) noexcept
{
    return strtod_l(text, end, cLocale());
}

void debuggerOutput(const char *text) noexcept
{
    if (auto sink = debuggerSink.load())
        sink(text);
}

void setDebuggerSink(void (*sink)(const char *text)) noexcept
{
    debuggerSink = sink;
}

#ifdef VX_FAULTS
void setTestLocaleCodePage(int32_t codePage) noexcept
{
    testLocaleCodePage = codePage;
}
#endif

}
