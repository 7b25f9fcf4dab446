#include "talm/config.hpp"

#include <atomic>

int32_t VgInstance = 0;

namespace {

std::atomic<IConfigMgr *> installedConfig{nullptr};
std::atomic<IUserFolderMgr *> installedFolders{nullptr};

}

void TalmSetConfigMgr(IConfigMgr *manager)
{
    installedConfig = manager;
}

void TalmSetUserFolderMgr(IUserFolderMgr *manager)
{
    installedFolders = manager;
}
