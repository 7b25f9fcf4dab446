// The folders of a user, as far as no application knows better.

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include "host/places.h"
#include "talm/config.hpp"

namespace {

struct Folder {
    int32_t number;
    const char *name;
};

constexpr Folder folders[] = {
    {4, "work"}, {5, "work"}, {9, "user"}, {10, "templates"}, {14, "search_paths.txt"}, {18, "documents"},
};

/** The native name of a folder; empty for a number without one or a user without a home. */
std::string nativeFolder(int32_t number)
{
    const char *chosen = std::getenv(("VX_FOLDER_" + std::to_string(number)).c_str());
    if (chosen && *chosen)
        return chosen;
    auto user = talm::userFolder();
    if (user.empty())
        return {};
    for (const Folder &folder : folders)
        if (folder.number == number)
            return (user / folder.name).string();
    return {};
}

class FolderManager final : public IUserFolderMgr {
public:
    uint32_t GetFolder(int32_t number, char *buffer, int32_t size) override
    {
        if (!buffer || size < 1)
            return 1;
        buffer[0] = 0;
        try {
            std::string folder = nativeFolder(number);
            for (char &c : folder)
                if (c == '/')
                    c = '\\';
            if (folder.empty() || folder.size() >= static_cast<size_t>(size))
                return 1;
            std::memcpy(buffer, folder.c_str(), folder.size() + 1);
            return 0;
        } catch (const std::bad_alloc &) {
            return 1;
        }
    }
};

constinit FolderManager own;
std::atomic<IUserFolderMgr *> installed{nullptr};

}

int32_t VgInstance = 0;

IUserFolderMgr *GetIUserFolderMgr(void)
{
    IUserFolderMgr *manager = installed;
    return manager ? manager : &own;
}

void TalmSetUserFolderMgr(IUserFolderMgr *manager)
{
    installed = manager;
}
