#ifndef VX_PARSE_HPP
#define VX_PARSE_HPP

/**
 * @file
 * The part of vx/parse.h that hands back standard containers.
 */

#include <string>
#include <vector>

#include "vx/parse.h"

/**
 * The names in a formula, in order, repeats kept: whatever is written like a
 * name, units after a point included, functions not. Commas divide here. The
 * formula need not be well formed: at a malformed token the list ends.
 */
VX_API std::vector<std::string> VxParseVarInquire(const char *text);

#endif
