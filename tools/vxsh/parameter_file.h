#pragma once

// Parameter files: one definition a line, in any order. Blank lines and lines
// that begin with "#" are skipped; line ends are LF or CR LF; a UTF-8 byte
// order mark before the first line is skipped.

#include <string_view>
#include <vector>

#include "tools/vxsh/definition.h"

namespace vxsh {

/** Longer lines are refused: no parameter is written like that. */
inline constexpr size_t longestLine = 1024 * 1024;

struct RefusedLine {
    Definition definition; ///< what could be read of it; the line and its number always
    Problem problem;
};

struct ParameterFile {
    std::vector<Definition> definitions; ///< in the order of the lines; no name twice
    std::vector<RefusedLine> refused;
};

/** Reads any bytes: what is no definition is among `refused`. A name's first definition counts. */
ParameterFile readParameters(std::string_view bytes);

}
