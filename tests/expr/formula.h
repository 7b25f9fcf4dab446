#pragma once

// Formulas, their trees as short texts, and a host's variables, for the tests
// of this folder.

#include <map>
#include <string>

#include <gtest/gtest.h>

#include "vx/diagnose.hpp"
#include "vx/err.h"
#include "vx/eval.hpp"
#include "vx/parse.hpp"
#include "vx/tools.h"

namespace vx::test {

/** The result of a call whose failure goes unreported. */
template <typename Call> uint32_t quietly(Call &&call)
{
    VxErrDisable();
    const uint32_t result = call();
    VxErrEnable();
    return result;
}

/** A formula, parsed quietly. */
struct Parsed {
    explicit Parsed(const std::string &text, bool extended = false)
    {
        result = quietly([&] {
            return extended ? VxParseGeExExtended(text.c_str(), &tree)
                            : VxParseGeEx(text.c_str(), &constant, &tree);
        });
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
