#pragma once

// Where names stand in a formula's text, for carets under them. The toolkit's
// parser says which names a formula refers to; this only finds the place.

#include <cstddef>
#include <string_view>
#include <vector>

#include "tools/vxsh/definition.h"

namespace vxsh {

struct NameToken {
    std::string_view name; ///< brackets taken off
    Span place;            ///< brackets included
};

/** Every name in the text, function names among them, in order of appearance. */
std::vector<NameToken> nameTokens(std::string_view formula);

/** The first place where the formula refers to `name`; the whole formula when it is not found. */
Span placeOfName(std::string_view formula, std::string_view name);

/** True when a formula can refer to the name without brackets. */
bool isPlainName(std::string_view name);

/** The position behind the bracket that closes the one at `open`, or the end of the text. */
size_t bracketEnd(std::string_view text, size_t open);

/** The position behind the double quote that closes the one at `open`, or the end of the text. */
size_t behindQuotes(std::string_view text, size_t open);

/** True at "then" or "else", which divide a formula wherever they stand, in any case. */
bool startsKeyword(std::string_view text, size_t at);
inline constexpr size_t keywordLength = 4;

/** What stands in a bracketed text, without the brackets and a "$" behind the first. */
std::string_view bracketContent(std::string_view bracketed);

}
