#include "files/subfolders.h"

#include <algorithm>

#include "files/folder.h"
#include "platform/os/os.h"
#include "text/codepage.h"

namespace vx::files {

namespace {

/**
 * Age of a status, in seconds, from which a later change cannot have the same
 * time: some file systems count in steps of two.
 */
constexpr int64_t settled = 3;

/** Read the names; false when the list is not whole, or may change without the folder's status. */
bool read(const char *folder, Subfolders::Names &names)
{
    std::vector<Entry> entries;
    bool whole = readFolder(folder, entries);
    for (Entry &entry : entries) {
        whole &= !entry.link;
        if (entry.folder)
            names.push_back(std::move(entry.name));
    }
    return whole;
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
    bool old = known && os::wallSeconds() - std::max(status.modified, status.changed) >= settled;
    if (read(folder, listing.names) && old)
        listing.keptFor = stamp;
    return listing.names;
}

}
