#pragma once

// One line that defines a parameter: NAME [: UNIT] = FORMULA.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vxsh {

/** A stretch of a line, in bytes. */
struct Span {
    size_t at = 0;
    size_t length = 0;
};

/** What is wrong, and where in its line. */
struct Problem {
    std::string message;
    Span place;
};

struct Definition {
    std::string line{}; ///< as written, for messages
    size_t number = 0;  ///< of the line in its file, from 1; 0 for a line of no file
    std::string name{}; ///< without the brackets it may have been written in
    std::string unit{}; ///< empty for none
    Span nameAt{}, unitAt{}, formulaAt{};

    std::string formula() const { return line.substr(formulaAt.at, formulaAt.length); }
};

/** Longer names than this cannot be referred to. */
inline constexpr size_t longestName = 1023;

/**
 * Take a line apart. The first "=" divides name and formula; before it the
 * last ":" behind the name divides the unit off. Blanks around the parts do
 * not count. A name in brackets, as formulas may write it, is the name inside.
 *
 * @param line  moved into out.line, also when something is wrong with it
 * @return what is wrong, or nothing
 */
std::optional<Problem> readDefinition(std::string line, Definition &out);

/** True for a line that means to define: a name that needs no brackets, or one in them, then "=" or ":". */
bool looksLikeDefinition(std::string_view line);

/** `text` without blanks, tabs and line ends at both ends. */
std::string_view trimmed(std::string_view text);

/** `name` as a formula refers to it: in brackets where it would not be read as one name. */
std::string asReference(const std::string &name);

}
