#pragma once

// Formulas, their trees as short texts, and a host's variables, for the tests
// of this folder.

#include <map>
#include <string>

#include "vx/err.h"
#include "vx/eval.h"
#include "vx/parse.h"
#include "vx/tools.h"

namespace vx::test {

/** A parsed formula; a failure goes unreported. */
struct Parsed {
    explicit Parsed(const std::string &text, bool extended = false)
    {
        VxErrDisable();
        result =
            extended ? VxParseGeExExtended(text.c_str(), &tree) : VxParseGeEx(text.c_str(), &constant, &tree);
        VxErrEnable();
    }
    ~Parsed() { VxGenExFree(&tree); }
    Parsed(const Parsed &) = delete;
    Parsed &operator=(const Parsed &) = delete;

    uint32_t result = 1;
    int32_t constant = -1;
    VsCnsGenOp *tree = nullptr;
};

/** A tree in prefix form: "(2 a 4)" is operation 2 on the name a and the number 4; texts in quotes, units
 * after ".". */
std::string shape(const VsCnsGenOp *tree);

/** The shape of a formula, or "refused". */
std::string shapeOf(const std::string &text, bool extended = false);

/** The error number with which a formula's parse fails, 0 for none; quietly. */
int32_t parseError(const std::string &text);

constexpr VxDimNum plain = {0.0, 0.0, 0.0, 0.0, 1.0};

/** Variables that are supplied while this lives; the host's call-backs and settings are put back. */
class Variables {
public:
    explicit Variables(std::map<std::string, VxDimNum> values = {});
    ~Variables();
    Variables(const Variables &) = delete;
    Variables &operator=(const Variables &) = delete;

private:
    std::map<std::string, VxDimNum> values_;
};

/** What an evaluation came to: a number, or the number of the failure. */
struct Outcome {
    int32_t error = 0;
    double value = 0.0;
};

/** Evaluate quietly in a unit ("" for base units). */
Outcome evaluate(const std::string &text, const std::string &unit = "");

}
