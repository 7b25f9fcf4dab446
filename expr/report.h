#pragma once

// How failures are told: the one place from which this module reports.

#include "expr/operations.h"
#include "expr/parser.h"

namespace vx::expr {

/** Put a parser's failure into the host's event log, unless errors are switched off. */
void report(const ParseFailure &failure);

/** File an evaluation's failure in the error log. */
void report(const EvalFailure &failure);

}
