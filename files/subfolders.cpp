#include "files/subfolders.h"

#include <algorithm>

#include "text/codepage.h"
#include "vx/str.h"

namespace vx::files {

namespace {

/**
 * Age of a status, in seconds, from which a later change cannot have the same
 * time: some file systems count in steps of two.
 */
constexpr int64_t settled = 3;

class Walk {
public:
    explicit Walk(const char *folder) noexcept { open_ = os::openFolder(folder, walk_) == os::Error::none; }
    ~Walk() { os::closeFolder(walk_); }
    Walk(const Walk &) = delete;
    Walk &operator=(const Walk &) = delete;

    bool next(os::FolderEntry &entry) noexcept
    {
        if (!open_)
            return false;
        os::Error error = os::readFolder(walk_, entry);
        complete_ = error == os::Error::notFound;
        return error == os::Error::none;
    }

    /** Whether the walk came to the end, and was not broken off by a failure. */
    bool complete() const noexcept { return complete_; }

private:
    os::FolderWalk walk_;
    bool open_ = false;
    bool complete_ = false;
};

/** Ignoring case, and among names equal but for that by their bytes, so that the order is always the same. */
bool inOrder(const std::string &a, const std::string &b) noexcept
{
    int32_t order = VxStrcasecmp(a.c_str(), b.c_str());
    return order != 0 ? order < 0 : a < b;
}

/** Read the names; false when the list may change without the folder's status. */
bool read(const char *folder, Subfolders::Names &names)
{
    bool links = false;
    Walk walk(folder);
    for (os::FolderEntry entry; walk.next(entry);) {
        links |= entry.link;
        if (entry.folder)
            names.emplace_back(entry.name);
    }
    std::sort(names.begin(), names.end(), inOrder);
    return walk.complete() && !links;
}

}

const Subfolders::Names &Subfolders::of(const char *folder)
{
    Listing &listing = listings_[folder];
    os::FileStatus status{};
    bool known = os::fileStatus(folder, status) == os::Error::none;
    Stamp stamp{status.device, status.inode, status.modified, status.changed, text::codePage().number};
    if (known && listing.keptFor == stamp)
        return listing.names;

    listing = {};
    int64_t newest = std::max(status.modified, status.changed);
    bool old = known && os::wallSeconds() - newest >= settled;
    if (read(folder, listing.names) && old)
        listing.keptFor = stamp;
    return listing.names;
}

}
