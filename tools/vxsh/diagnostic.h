#pragma once

// How a problem is shown: where, what, the line, and a caret under the place.

#include <string>
#include <string_view>
#include <vector>

#include "tools/vxsh/definition.h"

namespace vxsh {

/**
 * For instance
 *
 *   gear.par:12:24: error: An operand is expected.
 *       pitch diameter : mm = 2 * * m
 *                                 ^
 *
 * @param source  the file's name, or the program's for a formula of the command line
 * @param line    the line's text, as much of it shown as fits around the place
 * @param number  of the line, from 1; 0 when it stands in no file
 * @return whole lines
 */
std::string renderProblem(std::string_view source, std::string_view line, size_t number,
                          const Problem &problem);

/** Columns that a terminal shows the text in. East Asian characters take two. */
size_t displayWidth(std::string_view text);

/** `text` with a mark in place of every character that would control the terminal. */
std::string printable(std::string_view text);

}
