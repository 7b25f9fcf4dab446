#pragma once

// Places where a file may be, tried one after the other.

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <string_view>

#include "files/path_text.h"
#include "platform/os/os.h"

namespace vx::files {

inline bool exists(const char *path) noexcept
{
    return os::access(path, os::Access::exists) == os::Error::none;
}

/** Puts the first candidate found in place of the caller's name, which stays on a miss. */
class Candidates {
public:
    static constexpr size_t longest = 512;

    /** Those longer than `limit` less one, or than the caller's buffer holds, are passed over. */
    Candidates(char *name, int32_t size, size_t limit) noexcept
        : name_(name), size_(std::min(std::min(limit, longest), static_cast<size_t>(size)))
    {
    }

    bool found(std::initializer_list<std::string_view> parts) noexcept
    {
        char candidate[longest];
        return join(candidate, size_, parts) && exists(candidate) && take(candidate);
    }

    /** Take a place whether anything is there or not; false when it does not fit. */
    bool taken(std::initializer_list<std::string_view> parts) noexcept
    {
        char candidate[longest];
        return join(candidate, size_, parts) && take(candidate);
    }

    const char *name() const noexcept { return name_; }

private:
    bool take(const char *candidate) noexcept { return join(name_, size_, {candidate}); }

    char *name_;
    size_t size_;
};

}
