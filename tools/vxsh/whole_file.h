#pragma once

// Files of the user, by the names that the system gives them.

#include <string>

namespace vxsh {

/** Read a file, or the standard input for "-": empty when it was read, else the reason. */
std::string readWholeFile(const std::string &name, std::string &bytes);

/** Write a file anew: empty when it was written, else the reason; what stood there before is then kept. */
std::string writeWholeFile(const std::string &name, const std::string &bytes);

}
