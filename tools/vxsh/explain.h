#pragma once

// What the toolkit's located diagnostics say, in a sentence.

#include <string>

#include "vx/diagnose.h"

#include "tools/vxsh/definition.h"

namespace vxsh {

/** Number of the toolkit's message about results of another dimension than the unit's. */
inline constexpr int32_t unitMismatch = 219;

/** The toolkit's sentence for a failure's number, without its full stop: its error's or its message's. */
std::string sentence(int32_t number);

/** The failure with its particulars, at its place in the formula. The toolkit's own reports are dropped. */
Problem explained(const VxExprDiag &diag);

}
