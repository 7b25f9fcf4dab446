#pragma once

// The parts of a conditional formula, by its text.

#include <optional>
#include <string_view>

#include "tools/vxsh/definition.h"

namespace vxsh {

struct Conditional {
    Span condition;
    Span thenPart;
    Span elsePart; ///< empty when there is none
};

/** The parts of CONDITION then VALUE [else VALUE], parenthesised or not; nothing for other formulas. */
std::optional<Conditional> splitConditional(std::string_view formula);

}
