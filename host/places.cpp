#include "host/places.h"

#include <cstdlib>
#include <system_error>

namespace talm {

namespace {

std::filesystem::path environment(const char *name)
{
    const char *value = std::getenv(name);
    return value ? value : "";
}

}

std::filesystem::path userFolder()
{
    if (auto chosen = environment("VX_USER_DIR"); !chosen.empty())
        return chosen;
    auto home = environment("HOME");
    if (home.empty())
        home = environment("USERPROFILE");
    return home.empty() ? home : home / ".local" / "share" / "vx";
}

std::filesystem::path productFolder()
{
    std::error_code failed;
    auto program = std::filesystem::read_symlink("/proc/self/exe", failed);
    if (!failed)
        return program.parent_path();
    // Systems that do not tell: the host is started in its own folder.
    return std::filesystem::current_path(failed);
}

}
