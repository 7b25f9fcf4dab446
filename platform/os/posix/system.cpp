#include "platform/os/os.h"

#include <pwd.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "platform/os/fault.h"
#include "platform/os/native_text.h"
#include "platform/os/posix/error.h"
#include "platform/os/posix/native_file.h"
#include "platform/os/test_values.h"

namespace vx::os {

namespace {

#ifdef VX_FAULTS
std::atomic<const SystemDescription *> testSystem{nullptr};
#endif

/** The value of a line NAME=value, which may be quoted as in a shell. */
std::string valueOf(std::string_view text, std::string_view name)
{
    size_t at = text.starts_with(name) ? 0 : text.find("\n" + std::string(name));
    if (at == text.npos)
        return {};
    text.remove_prefix(at + name.size() + (at > 0));
    std::string_view line = text.substr(0, text.find('\n'));
    if (line.size() < 2 || (line[0] != '"' && line[0] != '\'') || line.back() != line[0])
        return std::string(line);
    std::string value;
    for (size_t i = 1; i + 1 < line.size(); ++i) {
        if (line[0] == '"' && line[i] == '\\' && i + 2 < line.size())
            ++i;
        value += line[i];
    }
    return value;
}

std::string distribution()
{
    for (const char *file : {"/etc/os-release", "/usr/lib/os-release"}) {
        std::string text;
        if (readWhole(file, text) != Error::none)
            continue;
        if (std::string name = valueOf(text, "PRETTY_NAME="); !name.empty())
            return name;
    }
    return {};
}

/** The numbers in front of a release: "6.1.0-13" is 6, 1, 0. */
void readVersion(const char *release, int32_t (&version)[3]) noexcept
{
    for (int32_t &number : version) {
        char *end = nullptr;
        number = static_cast<int32_t>(std::strtol(release, &end, 10));
        if (end == release || *end != '.')
            return;
        release = end + 1;
    }
}

template <size_t n, size_t m> void copyText(const char (&from)[n], char (&to)[m]) noexcept
{
    static_assert(n <= m);
    std::memcpy(to, from, n);
}

}

Error describeSystem(SystemDescription &out) noexcept
{
    VX_OS_VERB("describeSystem");
#ifdef VX_FAULTS
    if (const SystemDescription *set = testSystem) {
        out = *set;
        return Error::none;
    }
#endif
    utsname kernel;
    if (uname(&kernel) != 0)
        return errorOf(errno);
    return guarded([&] {
        out = {};
        std::string name = distribution();
        name += (name.empty() ? "" : ", ") + std::string(kernel.sysname) + " " + kernel.release;
        fromUtf8(name.c_str(), out.name, sizeof out.name);
        readVersion(kernel.release, out.version);
        out.has64Bits =
            std::strstr(kernel.machine, "64") != nullptr || std::strcmp(kernel.machine, "s390x") == 0;
        return Error::none;
    });
}

Error systemName(SystemName &out) noexcept
{
    VX_OS_VERB("systemName");
    struct utsname names;
    if (::uname(&names) != 0)
        return errorOf(errno);
    copyText(names.sysname, out.system);
    copyText(names.nodename, out.node);
    copyText(names.release, out.release);
    copyText(names.version, out.version);
    copyText(names.machine, out.machine);
    return Error::none;
}

Error userName(char *out, size_t size) noexcept
{
    VX_OS_VERB("userName");
    passwd record;
    passwd *found = nullptr;
    char room[4096];
    int code = getpwuid_r(geteuid(), &record, room, sizeof room, &found);
    // Users who come from elsewhere need not stand in the system's list.
    const char *name = found ? found->pw_name : std::getenv("USER");
    if (!name || !*name)
        return fail(code ? code : ENOENT);
    char text[4096];
    fromUtf8(name, text, sizeof text);
    if (std::strlen(text) >= size)
        return fail(ENAMETOOLONG);
    std::strcpy(out, text);
    return Error::none;
}

#ifdef VX_FAULTS
void setTestSystem(const SystemDescription *system) noexcept
{
    testSystem = system;
}
#endif

}
