// Trace channels: what the options say about them, and the trace writer.

#include "vx/debug.h"

#include <algorithm>
#include <cstdarg>
#include <cstring>

#include "platform/ascii.h"
#include "platform/os/os.h"
#include "text/codepage.h"
#include "vx/config.h"
#include "vx/str.h"

FILE *VgToolsDbgFileDesc = nullptr;
FILE *VgMathDbgFileDesc = nullptr;
int32_t VgToolsDbgGroup = 0;
int32_t VgToolsDbgLevel = 0;
int32_t VgDbgDisplayLevel = 0;
int32_t VgDbgDisplayLoc = 0;
int32_t VgCondDbg = 0;
int32_t VgMathDbgLevel = 0;
int32_t VgMathDbgGroup = 0;
char VgDbgFopenMode[5] = "w";

namespace vx::frame {

namespace {

constexpr char locationKey[] = "Debug.DisplayLoc";
constexpr char conditionKey[] = "Debug.ValidMac";

constexpr int32_t kindError = 16;
constexpr int32_t kindWarning = 32;

constexpr int32_t keySize = 256;
constexpr size_t messageSize = 2040;

/** The key "Debug.<channel><suffix>". */
class ChannelKey {
public:
    ChannelKey(const char *channel, const char *suffix)
    {
        VxSprintf(text_, keySize, "Debug.%s%s", channel, suffix);
    }

    operator const char *() const { return text_; }

private:
    char text_[keySize] = "";
};

int32_t number(const char *key)
{
    int32_t value = 0;
    return VxConfigInt(key, &value) ? 0 : value;
}

bool isNameCharacter(char c)
{
    return ascii::isLetter(c) || ascii::isDigit(c) || (c && std::strchr("._-+", c));
}

/** Where a channel's trace goes: a stream's name, or a file's and how it is opened. */
struct Target {
    char name[256];
    bool append;
};

Target targetOf(const char *channel)
{
    Target target{"stderr", false};
    char value[sizeof target.name];
    if (VxConfigString(ChannelKey(channel, ".File"), sizeof value, value))
        return target;
    const char *name = value;
    if (std::strstr(value, "stdout")) {
        name = "stdout";
    } else if (std::strstr(value, "stderr")) {
        name = "stderr";
    } else if (const char *append = std::strstr(value, ">>")) {
        name = append + 2;
        target.append = true;
    }
    auto length =
        static_cast<size_t>(std::find_if_not(name, name + std::strlen(name), isNameCharacter) - name);
    if (length > 0) {
        std::memcpy(target.name, name, length);
        target.name[length] = '\0';
    }
    return target;
}

const char *prefixOf(int32_t kind)
{
    return kind == kindError ? "ERROR @ " : kind == kindWarning ? "WARN @ " : "";
}

}

}

using namespace vx;
using namespace vx::frame;

int32_t VxGetDbgConfig(const char *name, char *file, int32_t size, int32_t *append, int32_t *group,
                       int32_t *level)
{
    if (!name || !file || size < 1 || !append || !group || !level)
        return 0;
    file[0] = '\0';
    *append = *group = *level = 0;
    if (number(ChannelKey(name, "")) == 0)
        return 0;
    Target target = targetOf(name);
    std::strcpy(VgDbgFopenMode, target.append ? "a" : "w");
    *append = target.append;
    VxStrCpy(file, target.name, size);
    *group = number(ChannelKey(name, ".Group"));
    *level = number(ChannelKey(name, ".Level"));
    return 1;
}

uint32_t VxSetDbgCondCnfg(void)
{
    int32_t value = 0;
    if (VxConfigInt(conditionKey, &value) == 0)
        VgCondDbg = value;
    VgCondDbg = VgCondDbg == 1;
    return 0;
}

uint32_t VxSetDbgDspCnfg(void)
{
    int32_t value = 0;
    uint32_t missing = VxConfigInt(locationKey, &value);
    if (!missing)
        VgDbgDisplayLoc = value != 0;
    return VgDbgDisplayLoc ? 1 : missing;
}

int32_t VxSetDbgDispLvl(int32_t level)
{
    VgDbgDisplayLevel = level;
    return level;
}

int32_t VxDebugOutput(FILE *stream, int32_t kind, const char *module, int32_t line, int32_t newline,
                      const char *format, ...)
{
    if (!stream || !module || !format)
        return EOF;
    // Some bytes more than are kept, so that the cut sees whether it would split a character.
    char message[messageSize + 8];
    va_list args;
    va_start(args, format);
    int32_t length = os::formatArgs(message, sizeof message, format, args);
    va_end(args);
    if (length < 0)
        return EOF;
    constexpr size_t kept = messageSize - 1;
    if (static_cast<size_t>(length) > kept)
        message[text::boundaryBefore(text::codePage(), message, kept)] = '\0';
    os::debuggerOutput(message);
    if (newline)
        os::debuggerOutput("\n");
    std::fputs(message, stream);
    std::fputs("  ", stream);
    if (VgDbgDisplayLoc)
        VxFprintf(stream, "%sModule:%s, Line:%d", prefixOf(kind), module, line);
    if (newline)
        std::fputs("\n", stream);
    return std::fflush(stream);
}
