#pragma once

// Where the host's files lie.

#include <filesystem>

namespace talm {

/** VX_USER_DIR, else .local/share/vx in the user's home; empty when neither is known. */
std::filesystem::path userFolder();

/** The folder of the running program, beside which the product's files lie. */
std::filesystem::path productFolder();

}
