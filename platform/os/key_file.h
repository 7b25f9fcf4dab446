#pragma once

// Settings as a text of lines, for systems without a store of their own.
// Sections are keys, lines are name=value; lines that begin with # or ; do not
// count. Keys and names ignore the case of ASCII letters. Backslashes and
// blanks mean themselves, so that keys and paths can be written by hand; only
// line breaks in values are encoded, as %0A and %0D (and the % of a text that
// would read so as %25). What a line does not say in this way is kept as it is.

#include <cstddef>
#include <string>
#include <string_view>

namespace vx::os {

/** The value of a name under a key; false when there is none. */
bool findSetting(std::string_view text, std::string_view key, std::string_view name, std::string &value);

/** Set the value of a name under a key, which is added when it is missing. */
void putSetting(std::string &text, std::string_view key, std::string_view name, std::string_view value);

/** The name of the n-th key directly below a key, in the order of the text; false when it has no more. */
bool findSubkey(std::string_view text, std::string_view key, size_t n, std::string &name);

/** Whether a value put under this key and name would be found again. */
bool canStandInKeyFile(std::string_view key, std::string_view name) noexcept;

}
