#include "tools/vxsh/formula.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <unordered_set>

#include "vx/diagnose.hpp"
#include "vx/parse.h"
#include "vx/str.h"
#include "vx/tools.h"

#include "tools/vxsh/conditional.h"
#include "tools/vxsh/explain.h"
#include "tools/vxsh/messages.h"

namespace vxsh {

namespace {

using namespace HESKET::Talm::Tool::Evaluation;

/** What the toolkit's trees are made of. */
namespace kind {
constexpr int32_t tree = 1, variable = 2, text = 7;
}
namespace op {
constexpr int32_t num2str = 43, substr = 46, vector = 68, point = 69;
}

/** Calls visit(node) for every node, without recursion: chains may be very long. */
template <typename Node, typename Visit> void eachNode(Node *root, Visit &&visit)
{
    std::vector<Node *> open;
    if (root)
        open.push_back(root);
    while (!open.empty()) {
        Node *node = open.back();
        open.pop_back();
        visit(*node);
        for (int32_t i = node->argc; i-- > 0;)
            if (node->slot[i].kind == kind::tree)
                open.push_back(static_cast<VsCnsGenOp *>(node->slot[i].value.ptr));
    }
}

const char *textOf(const VsCnsGenSlot &slot)
{
    return static_cast<const char *>(slot.value.ptr);
}

/** The variables that the toolkit's call-backs ask, while an evaluation goes on in this thread. */
thread_local const Variables *current = nullptr;

uint32_t supplyNumber(const char *name, void *, void *, VxDimNum *number)
{
    const Result *result = current ? current->find(name) : nullptr;
    if (!result || !result->isNumber())
        return 1;
    *number = result->quantity;
    return 0;
}

uint32_t supplyObject(const char *name, VxEvalValue *value)
{
    const Result *result = current ? current->find(name) : nullptr;
    if (!result || result->isNumber())
        return 1;
    *value = result->value;
    return 0;
}

class VariablesInForce {
public:
    explicit VariablesInForce(const Variables &variables)
    {
        VgfVarGetVal = supplyNumber;
        VxCbVarGetValObj(supplyObject);
        current = &variables;
    }
    ~VariablesInForce() { current = nullptr; }
    VariablesInForce(const VariablesInForce &) = delete;
    VariablesInForce &operator=(const VariablesInForce &) = delete;
};

/** The record in which a result in the unit is expected. */
VxDimNum expected(const Unit *unit)
{
    return unit ? unit->dimension : VxDimNum{0, 0, 0, 0, 1};
}

bool sameDimension(const VxDimNum &a, const VxDimNum &b)
{
    constexpr double tolerance = 1e-12;
    return std::fabs(a.len_exp - b.len_exp) <= tolerance && std::fabs(a.ang_exp - b.ang_exp) <= tolerance &&
           std::fabs(a.mass_exp - b.mass_exp) <= tolerance;
}

bool isPlain(const VxDimNum &number)
{
    return sameDimension(number, VxDimNum{0, 0, 0, 0, 1});
}

/** Makes the number one in base units; a plain one counts as given in the unit. */
VxDimNum inBaseUnits(const VxDimNum &number, const Unit *unit)
{
    VxDimNum base = number;
    base.value = number.factor * number.value;
    base.factor = 1;
    if (unit && isPlain(number)) {
        base = unit->dimension;
        base.value = number.factor * number.value * unit->factor;
        base.factor = 1;
    }
    return base;
}

std::string dimensionText(const VxDimNum &number)
{
    char text[96];
    VxExprDimText(&number, text, sizeof text);
    return text;
}

/** True when the formula makes or reads a text, a vector or a point, so that numbers alone do not do. */
bool handlesObjects(const VsCnsGenOp *tree, const Variables &variables)
{
    bool found = false;
    eachNode(tree, [&](const VsCnsGenOp &node) {
        bool makesText = node.op >= op::num2str && node.op <= op::substr;
        found = found || makesText || node.op == op::vector || node.op == op::point;
        for (int32_t i = 0; i < node.argc; ++i) {
            const VsCnsGenSlot &slot = node.slot[i];
            const Result *result = slot.kind == kind::variable ? variables.find(textOf(slot)) : nullptr;
            found = found || slot.kind == kind::text || (result && !result->isNumber());
        }
    });
    return found;
}

}

std::optional<Unit> findUnit(const std::string &name)
{
    const char *known = nullptr;
    double factor = 1;
    int32_t unitClass = 0;
    for (int32_t i = 0; VxUnitTableGet(i, &known, &factor, &unitClass); ++i) {
        if (VxStrcasecmp(known, name.c_str()) != 0)
            continue;
        Unit unit{known, factor, {}};
        VxGenExEvalUnit(unitClass, &unit.dimension);
        unit.dimension.factor = factor;
        return unit;
    }
    return std::nullopt;
}

std::optional<Problem> Formula::parse(const std::string &formula)
{
    text_ = formula;
    VsCnsGenOp *tree = nullptr;
    int32_t constant = 0;
    uint32_t failed = VxParseGeEx(text_.c_str(), &constant, &tree);
    tree_.reset(tree);
    if (!failed)
        return std::nullopt;
    VxExprDiag diag;
    VxExprDiagParse(text_.c_str(), 0, 1, &diag);
    return explained(diag);
}

std::vector<std::string> Formula::variables() const
{
    std::vector<std::string> names;
    std::unordered_set<std::string_view> seen;
    std::vector<const VsCnsGenSlot *> open;
    auto openSlots = [&](const VsCnsGenOp *node) {
        for (int32_t i = node ? node->argc : 0; i-- > 0;)
            open.push_back(&node->slot[i]);
    };
    openSlots(tree_.get());
    while (!open.empty()) {
        const VsCnsGenSlot &slot = *open.back();
        open.pop_back();
        if (slot.kind == kind::tree)
            openSlots(static_cast<const VsCnsGenOp *>(slot.value.ptr));
        else if (slot.kind == kind::variable && seen.insert(textOf(slot)).second)
            names.emplace_back(textOf(slot));
    }
    return names;
}

void Formula::number(const std::string &name, int32_t number)
{
    eachNode(tree_.get(), [&](VsCnsGenOp &node) {
        for (VsCnsGenSlot &slot : node.slot)
            if (slot.kind == kind::variable && name == textOf(slot))
                slot.flag = number;
    });
}

std::optional<Problem> Formula::evaluate(const Variables &variables, const Unit *unit, Result &result) const
{
    VariablesInForce inForce(variables);
    bool objects = handlesObjects(tree_.get(), variables);
    if (objects)
        if (auto parts = splitConditional(text_))
            return evaluateBranch(*parts, variables, unit, result);
    if (auto problem =
            objects ? evaluateValue(expected(unit), result) : evaluateNumber(expected(unit), result))
        return problem;
    return giveIn(unit, result);
}

std::optional<Problem> Formula::evaluateNumber(VxDimNum expected, Result &result) const
{
    result.quantity = expected;
    result.value = 0.0;
    if (VxGenExEvalRcrs(tree_.get(), nullptr, nullptr, &result.quantity) == 0)
        return std::nullopt;
    VxExprDiag diag;
    VxExprDiagEvalRcrs(text_.c_str(), nullptr, nullptr, 1, &expected, &diag);
    return explained(diag);
}

std::optional<Problem> Formula::evaluateValue(VxDimNum expected, Result &result) const
{
    result.quantity = expected;
    if (VxGenExEval(tree_.get(), &result.quantity, &result.value) == 0)
        return std::nullopt;
    VxExprDiag diag;
    Value unused;
    VxExprDiagEvalValue(text_.c_str(), nullptr, nullptr, 1, &expected, &unused, &diag);
    return explained(diag);
}

/**
 * Conditionals choose between numbers in the toolkit. Those that choose
 * between texts, vectors and points are resolved here, by their parts.
 */
std::optional<Problem> Formula::evaluateBranch(const Conditional &parts, const Variables &variables,
                                               const Unit *unit, Result &result) const
{
    constexpr double tolerance = 1e-12;
    Result condition;
    if (auto problem = evaluatePart(parts.condition, variables, nullptr, condition))
        return problem;
    if (!condition.isNumber())
        return Problem{"The condition is a " + kindName(condition) + ", not a number.", parts.condition};
    if (std::fabs(condition.quantity.value) > tolerance)
        return evaluatePart(parts.thenPart, variables, unit, result);
    if (parts.elsePart.length > 0)
        return evaluatePart(parts.elsePart, variables, unit, result);
    result = {};
    return giveIn(unit, result);
}

std::optional<Problem> Formula::evaluatePart(Span part, const Variables &variables, const Unit *unit,
                                             Result &result) const
{
    Formula formula;
    std::optional<Problem> problem = formula.parse(text_.substr(part.at, part.length));
    if (!problem)
        problem = formula.evaluate(variables, unit, result);
    if (problem)
        problem->place.at += part.at;
    return problem;
}

/** The result of an evaluation as one in base units, if it is one of the unit's dimension. */
std::optional<Problem> Formula::giveIn(const Unit *unit, Result &result) const
{
    if (!result.isNumber()) {
        if (unit)
            return problem("A " + kindName(result) + " cannot be given in " + unit->name + '.');
        return std::nullopt;
    }
    const VxDimNum &number = result.quantity;
    if (unit && !isPlain(number) && !sameDimension(number, unit->dimension))
        return problem(sentence(unitMismatch) + ": " + dimensionText(number) + ", not " +
                       dimensionText(unit->dimension) + '.');
    result.quantity = inBaseUnits(number, unit);
    if (!std::isfinite(result.quantity.value))
        return problem("The result is no finite number.");
    result.value = result.quantity.value;
    return std::nullopt;
}

std::optional<Problem> Formula::derivative(const Variables &variables, int32_t number, double &result) const
{
    VariablesInForce inForce(variables);
    Messages::take();
    if (VxGenDrvEvlRcrs(tree_.get(), number, &result))
        return problem(Messages::takeLine("The formula has no derivative here."));
    return std::nullopt;
}

Problem Formula::problem(std::string message) const
{
    return {std::move(message), {0, text_.size()}};
}

double numberIn(const Result &result, const Unit *unit)
{
    return unit ? result.quantity.value / unit->factor : result.quantity.value;
}

std::string kindName(const Result &result)
{
    return KindName(result.value.which() + 1);
}

}
