#pragma once

// A parsed formula, and its evaluation with variables.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "vx/eval.hpp"

#include "tools/vxsh/definition.h"

namespace vxsh {

struct Conditional;

using Value = HESKET::Talm::Tool::Evaluation::VxEvalValue;

/** What a formula gave. */
struct Result {
    Value value = 0.0;
    /** Of a number: value in base units, exponents, factor 1. */
    VxDimNum quantity{0, 0, 0, 0, 1};

    bool isNumber() const { return value.which() == 0; }
};

struct Unit {
    std::string name;
    double factor = 1;                 ///< to the base unit
    VxDimNum dimension{0, 0, 0, 0, 1}; ///< exponents, and the factor
};

/** The toolkit's unit of this name, or nothing. */
std::optional<Unit> findUnit(const std::string &name);

/** The variables that formulas may refer to. */
class Variables {
public:
    /** The variable's value, or null when there is none. */
    virtual const Result *find(const char *name) const = 0;

protected:
    ~Variables() = default;
};

class Formula {
public:
    /** Parse a text; what is wrong with it stands at a place in the text. */
    std::optional<Problem> parse(const std::string &text);

    /** The variables it refers to, each once, in order of appearance. */
    std::vector<std::string> variables() const;

    /** Give the variable the number that derivative() knows it by; every other has 0. */
    void number(const std::string &variable, int32_t number);

    /**
     * @param unit  read plain numbers in this unit and give the result in it; null for none.
     *              A text, vector or point in a unit is refused.
     */
    std::optional<Problem> evaluate(const Variables &variables, const Unit *unit, Result &result) const;

    /** The derivative with respect to the variable of this number. */
    std::optional<Problem> derivative(const Variables &variables, int32_t number, double &result) const;

    /** Null for an empty formula. */
    const VsCnsGenOp *tree() const { return tree_.get(); }

private:
    struct Free {
        void operator()(VsCnsGenOp *tree) const { VxGenExFree(&tree); }
    };

    std::optional<Problem> evaluateNumber(VxDimNum expected, Result &result) const;
    std::optional<Problem> evaluateValue(VxDimNum expected, Result &result) const;
    std::optional<Problem> evaluateBranch(const Conditional &parts, const Variables &variables,
                                          const Unit *unit, Result &result) const;
    std::optional<Problem> evaluatePart(Span part, const Variables &variables, const Unit *unit,
                                        Result &result) const;
    std::optional<Problem> giveIn(const Unit *unit, Result &result) const;
    Problem problem(std::string message) const;

    std::string text_;
    std::unique_ptr<VsCnsGenOp, Free> tree_;
};

/** The number of a result, in the unit when one is given. */
double numberIn(const Result &result, const Unit *unit);

/** "Number", "Vector", "Point" or "String". */
std::string kindName(const Result &result);

}
