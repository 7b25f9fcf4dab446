// Option files loaded, single options written, and the two spellings of keys.

#include "vx/config.h"

#include <charconv>
#include <cstring>
#include <iterator>

#include "talm/config.hpp"
#include "vx/str.h"
#include "vx/tools.h"

namespace {

constexpr const char *toolkitPrefix = "Vx";
constexpr const char *toolkitKey = "Vx.";
constexpr int32_t optionFiles = 4;
constexpr int32_t keySize = 80;

struct MappedKeys {
    char in[keySize];
    char out[keySize];
};

thread_local MappedKeys mapped;

/** `key`, perhaps in `out` itself, with its first `dropped` bytes replaced by `prefix`, cut to the buffer. */
char *withPrefix(char (&out)[keySize], const char *prefix, const char *key, size_t dropped)
{
    char text[keySize];
    VxStrCpy(text, prefix, keySize);
    size_t length = std::strlen(text);
    VxStrCpy(text + length, key + dropped, keySize - static_cast<int32_t>(length));
    VxStrCpy(out, text, keySize);
    return out;
}

uint32_t setValue(const char *key, const char *value)
{
    IConfigMgr *manager = GetIConfigMgr();
    return manager ? manager->SetValue(key, value) : 1;
}

struct Decimal {
    explicit Decimal(int32_t value) { *std::to_chars(text, std::end(text) - 1, value).ptr = '\0'; }
    char text[16];
};

bool neverMerged(const char *key, const char *value)
{
    if (VxStrSame(key, "Vx.PaperSizes"))
        return VxStrstr(value, "VXGL") != nullptr;
    return VxStrSame(key, "Vx.Session") != 0;
}

}

char *MapIn(const char *key)
{
    if (!key)
        return nullptr;
    size_t length = std::strlen(VgHKExt);
    bool product = length > 0 && std::strncmp(key, VgHKExt, length) == 0;
    return product ? withPrefix(mapped.in, toolkitPrefix, key, length) : withPrefix(mapped.in, "", key, 0);
}

char *MapOut(const char *key)
{
    if (!key)
        return nullptr;
    bool toolkit = std::strncmp(key, toolkitKey, std::strlen(toolkitKey)) == 0;
    return toolkit ? withPrefix(mapped.out, VgHKExt, key, std::strlen(toolkitPrefix))
                   : withPrefix(mapped.out, "", key, 0);
}

uint32_t VxAcmLoad(void)
{
    IConfigMgr *manager = GetIConfigMgr();
    for (int32_t file = 0; file < optionFiles; ++file)
        if (!manager || !manager->Load(file))
            return 1;
    return 0;
}

uint32_t VxAcmMod(const char *key, const char *value)
{
    return key && value ? setValue(key, value) : 1;
}

uint32_t VxAcmInt(const char *key, int32_t value)
{
    int32_t held = 0;
    Decimal decimal(value);
    if (VxConfigYesOrNo(key, &held) == 0) {
        char answer[4]; // an answer of three characters, so also no more digits than that
        VxStrCpy(answer, value == 1 ? "yes" : value == 0 ? "no" : decimal.text, sizeof answer);
        return setValue(key, answer);
    }
    if (VxConfigInt(key, &held) == 0)
        return setValue(key, decimal.text);
    return 1;
}

uint32_t VxAcmMerge(char *line)
{
    char *value = line ? VxStrchr(line, '=') : nullptr;
    if (!value)
        return 0;
    *value++ = '\0';
    VxStrReplace(value, '"', ' ');
    VxStrRem(line);
    VxStrRem(value);
    if (!*line || !*value)
        return 0;
    char key[keySize];
    VxStrCpy(key, MapIn(line), keySize);
    if (!neverMerged(key, value))
        setValue(key, value);
    return 0;
}
