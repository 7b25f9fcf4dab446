#pragma once

// Paths as texts of the process code page. A backslash separates only where
// it is a character of its own: 0x5C is also the second byte of characters of
// the double-byte code pages.

#include <cstddef>
#include <initializer_list>
#include <string_view>

namespace vx::files {

constexpr char separator = '\\';

inline bool isSeparator(char c) noexcept
{
    return c == separator || c == '/';
}

/** The last backslash of `path`, or null when it has none. */
const char *lastSeparator(const char *path) noexcept;

inline char *lastSeparator(char *path) noexcept
{
    return const_cast<char *>(lastSeparator(static_cast<const char *>(path)));
}

/** The first backslash of `path`, or null when it has none. */
const char *firstSeparator(const char *path) noexcept;

/** What stands behind the last backslash; the whole path when it has none. */
const char *lastComponent(const char *path) noexcept;

bool endsInSeparator(const char *path) noexcept;

/** "D:" at the front of a path. */
bool hasDrive(const char *path) noexcept;

/** Write the parts one behind the other; false and an empty `out` when they do not fit. */
bool join(char *out, size_t size, std::initializer_list<std::string_view> parts) noexcept;

}
