#ifndef VX_PARSE_HPP
#define VX_PARSE_HPP

/**
 * @file
 * The part of vx/parse.h that hands back standard containers.
 */

#include <string>
#include <vector>

#include "vx/parse.h"

VX_API std::vector<std::string> VxParseVarInquire(const char *text);

#endif
