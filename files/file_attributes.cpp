// Attributes of files.

#include <map>
#include <mutex>
#include <new>
#include <utility>

#include "platform/os/os.h"
#include "vx/file.h"

namespace vx::files {

namespace {

constexpr uint32_t noAttributes = 0xFFFFFFFF;
constexpr uint32_t normalAttribute = 0x80;
constexpr uint32_t storedAttributes = os::hiddenAttribute | os::archiveAttribute;

/** Attributes of files on file systems that have no place for them, for as long as the process runs. */
struct RememberedAttributes {
    using Identity = std::pair<uint64_t, uint64_t>; ///< device and inode

    std::mutex mutex;
    std::map<Identity, uint32_t> attributes;

    uint32_t of(Identity file)
    {
        std::lock_guard lock(mutex);
        auto found = attributes.find(file);
        return found == attributes.end() ? 0 : found->second;
    }

    void set(Identity file, uint32_t bits)
    {
        std::lock_guard lock(mutex);
        if (bits)
            attributes[file] = bits;
        else
            attributes.erase(file);
    }
};

RememberedAttributes remembered;

bool identify(const char *name, RememberedAttributes::Identity &out) noexcept
{
    os::FileStatus status;
    if (os::fileStatus(name, status) != os::Error::none)
        return false;
    out = {status.device, status.inode};
    return true;
}

bool attributesOf(const char *name, uint32_t &out)
{
    RememberedAttributes::Identity file;
    if (!name || os::fileAttributes(name, out) != os::Error::none || !identify(name, file))
        return false;
    out |= remembered.of(file);
    return true;
}

bool setAttributes(const char *name, uint32_t attributes)
{
    RememberedAttributes::Identity file;
    if (!name || !identify(name, file))
        return false;
    os::Error error = os::setFileAttributes(name, attributes);
    if (error != os::Error::none && error != os::Error::unsupported)
        return false;
    try {
        remembered.set(file, error == os::Error::unsupported ? attributes & storedAttributes : 0);
    } catch (const std::bad_alloc &) {
        return false;
    }
    return true;
}

/** Set some attributes and clear others. */
bool changeAttributes(const char *name, uint32_t set, uint32_t clear)
{
    uint32_t attributes = 0;
    return attributesOf(name, attributes) && setAttributes(name, (attributes | set) & ~clear);
}

}

}

using namespace vx;
using namespace vx::files;

uint32_t VxFileGetAttribute(const char *name)
{
    uint32_t attributes = 0;
    if (!attributesOf(name, attributes))
        return noAttributes;
    return attributes ? attributes : normalAttribute;
}

uint32_t VxFileSetAttribute(const char *name, uint32_t attributes)
{
    return !setAttributes(name, attributes);
}

uint32_t VxFileHide(const char *name)
{
    return !changeAttributes(name, os::hiddenAttribute, 0);
}

uint32_t VxFileShow(const char *name)
{
    return VxFileSetAttribute(name, normalAttribute);
}

int32_t VxFileIsHide(const char *name)
{
    uint32_t attributes = 0;
    return attributesOf(name, attributes) && (attributes & os::hiddenAttribute);
}

uint32_t VxFileFixAtt(const char *name)
{
    return !changeAttributes(name, 0, os::readOnlyAttribute);
}
