#pragma once

// The subfolders of folders that are searched with them.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vx::files {

/**
 * Lists of subfolders that need not be read again. One holds as long as the
 * status of its folder is the one under which it was read, and is kept only
 *
 *   - when that status was some seconds old by then, so that whatever comes
 *     or goes later must give it another time;
 *   - when no entry is a link, which changes without its folder;
 *   - while the code page in which the names are spelled stays.
 *
 * Everything else is read again each time: no answer is ever out of date.
 */
class Subfolders {
public:
    using Names = std::vector<std::string>;

    /**
     * The names of the subfolders, in the order of listings; none of a folder
     * that cannot be read. Valid until the next call. Throws std::bad_alloc.
     */
    const Names &of(const char *folder);

private:
    struct Stamp {
        uint64_t device, inode;
        int64_t modified, changed; ///< seconds
        int32_t codePage;

        bool operator==(const Stamp &) const = default;
    };
    struct Listing {
        std::optional<Stamp> keptFor; ///< none: to be read again
        Names names;
    };

    std::map<std::string, Listing, std::less<>> listings_;
};

}
