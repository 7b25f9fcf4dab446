// Single values of the system's settings store.

#include "platform/os/os.h"
#include "vx/sys.h"

using namespace vx;

namespace {

bool rootOf(int32_t number, os::SettingsRoot &root) noexcept
{
    if (number != 0 && number != 1)
        return false;
    root = number == 0 ? os::SettingsRoot::user : os::SettingsRoot::machine;
    return true;
}

}

uint32_t VxRegistryGet(int32_t root, const char *key, const char *value, char *buf, int32_t size)
{
    if (!buf || size < 1)
        return 1;
    buf[0] = '\0';
    os::SettingsRoot store;
    if (!key || !value || !rootOf(root, store))
        return 1;
    return os::readSetting(store, key, value, buf, static_cast<size_t>(size)) != os::Error::none;
}

uint32_t VxRegistrySet(int32_t root, const char *key, const char *value, const char *text)
{
    os::SettingsRoot store;
    if (!key || !value || !text || !rootOf(root, store))
        return 1;
    return os::writeSetting(store, key, value, text) != os::Error::none;
}
