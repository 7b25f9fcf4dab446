// Which system this is, and options that are valid.

#include <cstring>
#include <new>
#include <string>

#include "platform/os/os.h"
#include "platform/windows_names.h"
#include "text/codepage.h"
#include "vx/str.h"
#include "vx/sys.h"

using namespace vx;

namespace {

/** What the system tells of itself; nothing at all when it does not. */
os::SystemDescription described() noexcept
{
    os::SystemDescription system{};
    if (os::describeSystem(system) != os::Error::none)
        system = {};
    return system;
}

int32_t productNumber(const os::SystemDescription &system) noexcept
{
    return system.windows ? 10 * system.version[0] + system.version[1] : 0;
}

std::string systemName(const os::SystemDescription &system)
{
    if (!system.windows)
        return system.name;
    std::string name = platform::windowsName(system.version[0], system.version[1], system.server);
    if (name.empty())
        name = "Windows " + std::to_string(system.version[0]) + "." + std::to_string(system.version[1]);
    std::string edition = platform::windowsEdition(system.productType);
    return edition.empty() ? name : name + " " + edition;
}

std::string withoutBlanksAround(std::string text)
{
    text.erase(0, text.find_first_not_of(" \t"));
    text.erase(text.find_last_not_of(" \t") + 1);
    return text;
}

/** The entry at `list`, which then stands behind it and its comma. */
std::string nextEntry(const text::CodePage &page, const char *&list)
{
    const char *begin = list;
    while (*list && *list != ',')
        list += text::charBytes(page, list);
    std::string entry(begin, list);
    list += *list == ',';
    return withoutBlanksAround(entry);
}

}

int32_t VxIsWindows(void)
{
    return 1;
}

int32_t VxIsWindows64Bit(void)
{
    return described().has64Bits;
}

int32_t VxWinOsIsVistaWin7(void)
{
    int32_t product = productNumber(described());
    return product == 60 || product == 61;
}

int32_t VxWinOs(int32_t *major, int32_t *minor, int32_t *build)
{
    os::SystemDescription system = described();
    int32_t *numbers[] = {major, minor, build};
    for (int i = 0; i < 3; ++i)
        if (numbers[i])
            *numbers[i] = system.version[i];
    return productNumber(system);
}

uint32_t VxWinOsInfo(char *buf, int32_t size)
{
    if (!buf || size < 1)
        return 1;
    *buf = '\0';
    os::SystemDescription system{};
    if (os::describeSystem(system) != os::Error::none)
        return 1;
    try {
        std::string text = systemName(system) + (system.has64Bits ? ", 64-bit" : ", 32-bit");
        if (text.size() >= static_cast<size_t>(size))
            return 1;
        std::memcpy(buf, text.c_str(), text.size() + 1);
        return 0;
    } catch (const std::bad_alloc &) {
        return 1;
    }
}

int32_t VxValidOption(const char *option, const char *list)
{
    if (!option || !list)
        return 0;
    try {
        std::string wanted = withoutBlanksAround(option);
        const text::CodePage &page = text::codePage();
        while (!wanted.empty() && *list)
            if (VxStrcasecmp(nextEntry(page, list).c_str(), wanted.c_str()) == 0)
                return 1;
    } catch (const std::bad_alloc &) {
        // Not known to be valid.
    }
    return 0;
}
