#pragma once

// printf into a string, the same in every locale.

#include <cstdarg>
#include <memory_resource>
#include <string>

namespace talm {

/**
 * Append what printf would write. "%n" stores nothing, widths and precisions
 * end at 4096, and numbers have a point whatever the process's locale says.
 */
void appendFormatted(std::pmr::string &out, const char *format, va_list args);

}
