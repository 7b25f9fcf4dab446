// What the settings store tells of the machine and its user.

#include <cstring>

#include "platform/os/os.h"
#include "vx/str.h"
#include "vx/sys.h"

using namespace vx;

namespace {

constexpr int32_t currentUser = 0;
constexpr int32_t machine = 1;
constexpr const char *programFolders = "Software\\Microsoft\\Windows\\CurrentVersion";
constexpr const char *usualProgramFolder = "C:\\Program Files";
constexpr const char *mailAccounts = "Software\\Microsoft\\Internet Account Manager\\Accounts";

struct MailAccount {
    char key[512];
};

/** The first mail account of the user that has a setting, however long that is. */
bool findAccount(const char *setting, MailAccount &account) noexcept
{
    char name[256];
    os::Error error;
    for (int32_t n = 0;; ++n) {
        error = os::subkeyName(os::SettingsRoot::user, mailAccounts, n, name, sizeof name);
        if (error == os::Error::nameTooLong)
            continue;
        if (error != os::Error::none)
            return false;
        VxSprintf(account.key, sizeof account.key, "%s\\%s", mailAccounts, name);
        char value[2];
        error = os::readSetting(os::SettingsRoot::user, account.key, setting, value, sizeof value);
        if (error == os::Error::nameTooLong || (error == os::Error::none && *value))
            return true;
    }
}

/** A setting that an account need not have: false when it does not fit. */
bool getOptional(const MailAccount &account, const char *setting, char *buf, int32_t size) noexcept
{
    os::Error error =
        os::readSetting(os::SettingsRoot::user, account.key, setting, buf, static_cast<size_t>(size));
    return error == os::Error::none || error == os::Error::notFound;
}

bool clear(char *buf, int32_t size) noexcept
{
    if (!buf || size < 1)
        return false;
    *buf = '\0';
    return true;
}

}

uint32_t VxProgramFileDir(char *buffer, int32_t size)
{
    if (!clear(buffer, size))
        return 1;
    char set[1024];
    bool found = VxRegistryGet(machine, programFolders, "ProgramFilesDir", set, sizeof set) == 0;
    const char *folder = found ? set : usualProgramFolder;
    size_t length = std::strlen(folder);
    if (length >= static_cast<size_t>(size))
        return 1;
    std::memcpy(buffer, folder, length + 1);
    return 0;
}

uint32_t VxFindSmtpServer(char *buf, int32_t size)
{
    constexpr const char *setting = "SMTP Server";
    MailAccount account;
    if (!clear(buf, size) || !findAccount(setting, account))
        return 1;
    return VxRegistryGet(currentUser, account.key, setting, buf, size);
}

uint32_t VxFindSmtpUserInfo(char *address, int32_t addressSize, char *name, int32_t nameSize, char *org,
                            int32_t orgSize)
{
    constexpr const char *setting = "SMTP Email Address";
    MailAccount account;
    bool cleared = clear(address, addressSize);
    cleared = clear(name, nameSize) && cleared;
    cleared = clear(org, orgSize) && cleared;
    if (!cleared || !findAccount(setting, account))
        return 1;
    if (VxRegistryGet(currentUser, account.key, setting, address, addressSize) == 0 &&
        getOptional(account, "SMTP Display Name", name, nameSize) &&
        getOptional(account, "SMTP Organization Name", org, orgSize))
        return 0;
    *address = *name = *org = '\0';
    return 1;
}

uint32_t VxUserName(char *buf, int32_t size)
{
    if (!clear(buf, size))
        return 1;
    return os::userName(buf, static_cast<size_t>(size)) != os::Error::none;
}
