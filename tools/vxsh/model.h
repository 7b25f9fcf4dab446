#pragma once

// The parameters of a session: defined in any order, evaluated in theirs.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "tools/vxsh/definition.h"
#include "tools/vxsh/formula.h"

namespace vxsh {

struct DependencyOrder;

struct Parameter {
    Definition definition;
    std::optional<Unit> unit;
    std::vector<std::string> needs; ///< names its formula refers to
    std::optional<Problem> misread; ///< why it can never be evaluated: its unit, or its formula's form
    std::optional<Problem> failure; ///< why its last evaluation failed
    bool evaluated = false;         ///< `result` holds
    Result result;
};

class Model final : public Variables {
public:
    using Index = uint32_t;

    /** Called with the number of parameters done, now and then. */
    using Progress = std::function<void(size_t)>;

    /** Add a parameter, or redefine the one of its name. Nothing is evaluated. */
    Index define(Definition definition);

    /** Let no parameter belong to a line of a file any more, before another file is read. */
    void forgetLines();

    /** Why a definition could never be evaluated, or nothing. */
    static std::optional<Problem> misreading(const Definition &definition);

    /** Evaluate every parameter. */
    void evaluate(const Progress &progress = {});

    /** Evaluate a parameter and those that depend on it: which they are, in the order of evaluation. */
    std::vector<Index> evaluateFrom(Index changed);

    const std::vector<Parameter> &parameters() const { return parameters_; }
    const Parameter &at(Index index) const { return parameters_[index]; }
    Index indexOf(const Parameter &parameter) const
    {
        return static_cast<Index>(&parameter - parameters_.data());
    }

    /** The parameter of this name, or null. */
    const Parameter *parameter(const std::string &name) const;

    /** A parameter's result, for formulas. Null also while it is not evaluated. */
    const Result *find(const char *name) const override;

    /** Why a formula with these names cannot be evaluated: the first undefined or failed one, or nothing. */
    std::optional<Problem> missing(const std::vector<std::string> &names, std::string_view formula) const;

private:
    std::vector<Index> dependents(Index changed) const;
    std::vector<Index> evaluateSet(const std::vector<Index> &set, const Progress &progress);
    void failCircles(const DependencyOrder &order, const std::vector<Index> &set);
    void evaluateOne(Parameter &parameter);

    std::vector<Parameter> parameters_;
    std::unordered_map<std::string, Index> byName_;
    std::unordered_map<std::string, std::vector<Index>> users_; ///< who refers to a name, defined or not
};

}
