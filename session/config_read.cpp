// Options of the host's configuration manager, read as typed values.

#include "vx/config.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <limits>

#include "platform/os/os.h"
#include "talm/config.hpp"
#include "vx/mem.h"
#include "vx/str.h"

namespace {

constexpr int32_t black = 16;
constexpr int32_t noColor = -1;
constexpr int32_t colorOfPart = 255;
constexpr const char *fromPart = "-FROM PART-";
constexpr const char *colors =
    "ignore,green,red,brown,goldenrod,med-blue,dark-magenta,dark-grey,dark-blue,violet,"
    "light-green,light-blue,rose,light-magenta,light-grey,white,black,yellow,med-grey";

constexpr int32_t fieldWidth = 32; // of VxStrParse
constexpr int32_t maxChoices = 32;

// Whether this thread reads installation defaults.
thread_local bool readsDefaults = false;

/** This thread reads installation defaults for a scope. */
class ReadingDefaults {
public:
    ReadingDefaults() : before_(readsDefaults) { readsDefaults = true; }
    ~ReadingDefaults() { readsDefaults = before_; }
    ReadingDefaults(const ReadingDefaults &) = delete;
    ReadingDefaults &operator=(const ReadingDefaults &) = delete;

private:
    bool before_;
};

/** The text of an option, a block of the manager's that is given back at the end. */
class OptionText {
public:
    explicit OptionText(const char *key)
    {
        IConfigMgr *manager = key ? GetIConfigMgr() : nullptr;
        char *text = nullptr;
        bool missing = !manager || manager->GetValue(key, &text, readsDefaults) != 0;
        block_ = text;
        present_ = !missing && text;
    }
    ~OptionText() { VxMemFree(&block_); }
    OptionText(const OptionText &) = delete;
    OptionText &operator=(const OptionText &) = delete;

    explicit operator bool() const { return present_; }
    char *raw() const { return static_cast<char *>(block_); }

    /** The text with all its white space removed, for good. */
    char *cleaned() const
    {
        VxStrClean(raw());
        return raw();
    }

private:
    void *block_ = nullptr;
    bool present_ = false;
};

/** What atoi gives, but the nearest integer for a number out of range. */
int32_t leadingInteger(const char *text)
{
    constexpr long long lowest = std::numeric_limits<int32_t>::min();
    constexpr long long highest = std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(std::clamp(std::strtoll(text, nullptr, 10), lowest, highest));
}

bool begins(const char *text, char lower, char upper)
{
    return *text == lower || *text == upper;
}

/** 1-based position of a cleaned value among the choices of a list; 0 when it is none of them. */
int32_t positionIn(const char *list, const char *value)
{
    char choices[maxChoices][fieldWidth];
    int32_t count = maxChoices;
    VxStrParse(list, ',', choices[0], &count);
    for (int32_t i = 0; i < count; ++i)
        if (VxStrcasecmp(choices[i], value) == 0)
            return i + 1;
    return 0;
}

int32_t colorOf(const OptionText &option, int32_t missing)
{
    int32_t position = option ? positionIn(colors, option.cleaned()) : 0;
    return position ? position - 1 : missing;
}

int32_t color(const char *key, int32_t missing)
{
    return colorOf(OptionText(key), missing);
}

int32_t viewColor(const char *key, int32_t missing)
{
    OptionText option(key);
    if (option && VxStrSame(option.raw(), fromPart))
        return colorOfPart;
    return colorOf(option, missing);
}

}

uint32_t VxConfigInt(const char *key, int32_t *out)
{
    if (!out)
        return 1;
    *out = 0;
    OptionText option(key);
    if (!option)
        return 1;
    *out = VxStrSame(option.raw(), "yes") ? 1 : leadingInteger(option.raw());
    return 0;
}

int32_t VxConfigNum(const char *key)
{
    int32_t value = 0;
    VxConfigInt(key, &value);
    return value;
}

int32_t VxConfigYes(const char *key)
{
    OptionText option(key);
    return option && begins(option.cleaned(), 'y', 'Y');
}

int32_t VxConfigNo(const char *key)
{
    OptionText option(key);
    return option && begins(option.cleaned(), 'n', 'N');
}

uint32_t VxConfigYesOrNo(const char *key, int32_t *out)
{
    if (!out)
        return 1;
    *out = 0;
    OptionText option(key);
    if (!option)
        return 1;
    const char *answer = option.cleaned();
    *out = begins(answer, 'y', 'Y');
    return *out || begins(answer, 'n', 'N') ? 0 : 1;
}

uint32_t VxConfigVal(const char *key, double *out)
{
    if (!out)
        return 1;
    *out = 0.0;
    OptionText option(key);
    if (!option)
        return 1;
    *out = vx::os::parseDouble(option.raw(), nullptr);
    return 0;
}

uint32_t VxConfigString(const char *key, int32_t size, char *out)
{
    if (!out || size < 1)
        return 1;
    *out = '\0';
    OptionText option(key);
    if (!option)
        return 1;
    VxStrCpy(out, option.raw(), size); // cuts what does not fit
    return 0;
}

uint32_t VxConfigRGB(const char *key, int32_t *r, int32_t *g, int32_t *b)
{
    OptionText option(key);
    if (!r || !g || !b || !option)
        return 1;
    char fields[4][fieldWidth]; // one more than wanted, to notice it
    int32_t count = static_cast<int32_t>(std::size(fields));
    VxStrParse(option.cleaned(), ',', fields[0], &count);
    if (count != 3)
        return 1;
    int32_t *outs[] = {r, g, b};
    for (int i = 0; i < 3; ++i)
        *outs[i] = std::clamp(leadingInteger(fields[i]), 0, 255);
    return 0;
}

int32_t VxConfigOpt(const char *key, const char *list)
{
    OptionText option(key);
    return list && option ? positionIn(list, option.cleaned()) : 0;
}

int32_t VxConfigColor(const char *key)
{
    return color(key, black);
}

int32_t VxConfigVuColor(const char *key)
{
    return viewColor(key, black);
}

uint32_t VxLaDefaultInt(const char *key, int32_t *out)
{
    ReadingDefaults scope;
    return VxConfigInt(key, out);
}

uint32_t VxLaDefaultYesOrNo(const char *key, int32_t *out)
{
    ReadingDefaults scope;
    return VxConfigYesOrNo(key, out);
}

uint32_t VxLaDefaultVal(const char *key, double *out)
{
    ReadingDefaults scope;
    return VxConfigVal(key, out);
}

uint32_t VxLaDefaultString(const char *key, int32_t size, char *out)
{
    ReadingDefaults scope;
    return VxConfigString(key, size, out);
}

uint32_t VxLaDefaultRGB(const char *key, int32_t *r, int32_t *g, int32_t *b)
{
    ReadingDefaults scope;
    return VxConfigRGB(key, r, g, b);
}

int32_t VxLaDefaultOpt(const char *key, const char *list)
{
    ReadingDefaults scope;
    return VxConfigOpt(key, list);
}

int32_t VxLaDefaultColor(const char *key)
{
    ReadingDefaults scope;
    return color(key, noColor);
}

int32_t VxLaDefaultVuColor(const char *key)
{
    ReadingDefaults scope;
    return viewColor(key, noColor);
}
