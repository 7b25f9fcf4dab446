#pragma once

// Option files on disk.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace talm {

/** All bytes of a file; nothing when it cannot be read. */
std::optional<std::string> readWhole(const std::filesystem::path &path);

/**
 * Set one option in a file, which is made with its folder when missing. At
 * each moment the old or the new file stands there whole, and what another
 * process stores at the same time is kept.
 *
 * @return whether it was stored; if not, the file is as it was
 */
bool storeOption(const std::filesystem::path &path, std::string_view key, std::string_view value);

}
