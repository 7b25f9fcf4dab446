#include "tools/vxsh/formula.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <unordered_set>

#include "vx/parse.h"
#include "vx/str.h"
#include "vx/tools.h"

#include "tools/vxsh/messages.h"
#include "tools/vxsh/number.h"

namespace vxsh {

namespace {

using namespace HESKET::Talm::Tool::Evaluation;

/** Kinds of operands and codes of operations in the toolkit's trees. */
constexpr int32_t subtree = 1, variable = 2, text = 7;
constexpr int32_t leaf = 1, conditional = 24, num2str = 43, date = 45, substr = 46, vector = 68, point = 69;

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
            if (node->slot[i].kind == subtree)
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
    return std::fabs(a.len_exp - b.len_exp) <= tolerance && std::fabs(a.ang_exp - b.ang_exp) <= tolerance
        && std::fabs(a.mass_exp - b.mass_exp) <= tolerance;
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
    return isPlain(number) ? "a plain number" : "in " + baseUnit(number);
}

/** True when the formula makes or reads a text, a vector or a point, so that numbers alone do not do. */
bool handlesObjects(const VsCnsGenOp *tree, const Variables &variables)
{
    bool found = false;
    eachNode(tree, [&](const VsCnsGenOp &node) {
        found = found || (node.op >= num2str && node.op <= substr) || node.op == vector || node.op == point;
        for (int32_t i = 0; i < node.argc; ++i) {
            const VsCnsGenSlot &slot = node.slot[i];
            const Result *result = slot.kind == variable ? variables.find(textOf(slot)) : nullptr;
            found = found || slot.kind == text || (result && !result->isNumber());
        }
    });
    return found;
}

/** The operand as a tree; `made` holds it when it is a leaf. */
const VsCnsGenOp *operand(const VsCnsGenOp *node, int32_t i, VsCnsGenOp &made)
{
    VsCnsGenSlot slot = node->slot[i];
    if (slot.kind == subtree)
        return static_cast<const VsCnsGenOp *>(slot.value.ptr);
    made = {leaf, 1, {slot, {}, {}}};
    return &made;
}

/**
 * Conditionals choose between numbers in the toolkit. Around texts, vectors
 * and points they are resolved here: the tree that the conditions lead to, or
 * null when one cannot be evaluated.
 */
const VsCnsGenOp *chosen(const VsCnsGenOp *tree, const Variables &variables, VsCnsGenOp &made)
{
    constexpr double tolerance = 1e-12;
    while (tree->op == conditional && handlesObjects(tree, variables)) {
        VxDimNum condition = expected(nullptr);
        if (VxGenExEvalRcrs(operand(tree, 0, made), nullptr, nullptr, &condition))
            return nullptr;
        bool holds = std::fabs(condition.factor * condition.value) > tolerance;
        tree = operand(tree, holds ? 1 : 2, made);
    }
    return tree;
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
    if (failed)
        return Problem{Messages::takeLine("the formula cannot be read"), {0, text_.size()}};
    return std::nullopt;
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
        if (slot.kind == subtree)
            openSlots(static_cast<const VsCnsGenOp *>(slot.value.ptr));
        else if (slot.kind == variable && seen.insert(textOf(slot)).second)
            names.emplace_back(textOf(slot));
    }
    return names;
}

void Formula::number(const std::string &name, int32_t number)
{
    eachNode(tree_.get(), [&](VsCnsGenOp &node) {
        for (VsCnsGenSlot &slot : node.slot)
            if (slot.kind == variable && name == textOf(slot))
                slot.flag = number;
    });
}

std::optional<Problem> Formula::evaluate(const Variables &variables, const Unit *unit, Result &result) const
{
    VariablesInForce inForce(variables);
    VxDimNum number = expected(unit);
    Value value = 0.0;
    VsCnsGenOp made{};
    const VsCnsGenOp *tree = chosen(tree_.get(), variables, made);
    if (!tree || VxGenExEval(tree, &number, &value))
        return problem(Messages::takeLine("the formula cannot be evaluated"));
    result.value = std::move(value);
    if (!result.isNumber() && !unit)
        return std::nullopt;
    if (!result.isNumber())
        return problem("the formula gives a " + kindName(result) + ", which cannot be in " + unit->name);
    if (unit && !isPlain(number) && !sameDimension(number, unit->dimension))
        return problem("the result is " + dimensionText(number) + ", which cannot be given in " + unit->name);
    result.quantity = inBaseUnits(number, unit);
    result.value = result.quantity.value;
    return std::nullopt;
}

std::optional<Problem> Formula::derivative(const Variables &variables, int32_t number, double &result) const
{
    VariablesInForce inForce(variables);
    if (VxGenDrvEvlRcrs(tree_.get(), number, &result))
        return problem(Messages::takeLine("the formula has no derivative here"));
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
