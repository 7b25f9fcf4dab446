#include "expr/derivative.h"

#include <cmath>

#include "expr/numeric.h"
#include "expr/small_stack.h"

namespace vx::expr {

namespace {

/** An operand's value and derivative, either of which may be missing until somebody asks for it. */
struct Dual {
    VxDimNum value;
    double derivative;
    bool hasValue, hasDerivative;
};

struct Frame {
    const VsCnsGenOp *node;
    int32_t next;
};

/** u, v and their derivatives in one rule; a rule that asks for what is missing fails. */
struct Operands {
    const Dual &first;
    const Dual &second;
    bool valuesAsked = false;
    bool complete = true;

    double take(const Dual &operand, bool derivative)
    {
        valuesAsked = valuesAsked || (!derivative && !operand.hasValue);
        complete = complete && (derivative ? operand.hasDerivative : operand.hasValue);
        return derivative ? operand.derivative : magnitude(operand.value);
    }
    double u() { return take(first, false); }
    double v() { return take(second, false); }
    double du() { return take(first, true); }
    double dv() { return take(second, true); }
};

// Angles are degrees here, and no factor pi/180 is applied to the derivative.
// The rules for floor, round, deg and rad give values: hosts expect them so.
bool deriveOne(int32_t code, Operands &of, double &result)
{
    double u = code == op::leaf ? 0.0 : of.u();
    double radians = u * radiansPerDegree;
    switch (code) {
    case op::leaf: result = of.du(); return true;
    case op::sin: result = std::cos(radians) * of.du(); return true;
    case op::cos: result = -std::sin(radians) * of.du(); return true;
    case op::tan: {
        double cosine = std::cos(radians);
        result = of.du() / (cosine * cosine);
        return !isZero(u - pi / 2) && cosine * cosine >= tolerance;
    }
    case op::asin:
    case op::acos:
        result = (code == op::asin ? of.du() : -of.du()) / std::sqrt(1.0 - u * u);
        return 1.0 - u * u > tolerance;
    case op::atan: result = of.du() / (u * u + 1.0); return true;
    case op::log: result = of.du() / (std::log(10.0) * u); return std::fabs(std::log(10.0) * u) >= tolerance;
    case op::ln: result = of.du() / u; return !isZero(u);
    case op::exp: result = std::exp(u) * of.du(); return true;
    case op::sqrt: result = of.du() / (2.0 * std::sqrt(u)); return u > tolerance;
    case op::abs: result = std::fabs(u) * of.du() / u; return !isZero(u);
    case op::floor: result = std::floor(u); return true;
    case op::round: result = roundHalfAway(u); return true;
    case op::deg: result = u / radiansPerDegree; return true;
    case op::rad: result = u * radiansPerDegree; return true;
    default: return false;
    }
}

bool deriveTwo(int32_t code, Operands &of, double &result)
{
    switch (code) {
    case op::add: result = of.du() + of.dv(); return true;
    case op::subtract: result = of.du() - of.dv(); return true;
    case op::multiply: result = of.dv() * of.u() + of.v() * of.du(); return true;
    case op::divide:
        result = (of.v() * of.du() - of.dv() * of.u()) / (of.v() * of.v());
        return !isZero(of.v());
    case op::power:
        result = std::pow(of.u(), of.v()) * (std::log(of.u()) * of.dv() + of.v() * of.du() / of.u());
        return of.u() > tolerance;
    default: return false;
    }
}

/** Values and derivatives in one walk, so that a long chain is not evaluated anew at each of its links. */
class Walk {
public:
    Walk(int32_t variable, EvalFailure &failure) noexcept
        : settings_(settingsFor(plainNumber(0.0), nullptr, nullptr)), variable_(variable), failure_(failure)
    {
    }

    bool run(const VsCnsGenOp *tree, double &derivative) noexcept
    {
        if (!enter(tree))
            return false;
        while (!frames_.empty())
            if (!step(frames_.top()))
                return false;
        if (!duals_.top().hasDerivative)
            return false;
        derivative = duals_.top().derivative;
        return true;
    }

private:
    bool enter(const VsCnsGenOp *node) noexcept
    {
        if (!node || node->argc < 1 || node->argc > 3 || (node->argc == 3 && node->op != op::conditional))
            return false;
        if (frames_.push({node, 0}))
            return true;
        failure_.number = error::noMemory;
        return false;
    }

    bool step(Frame &frame) noexcept
    {
        const VsCnsGenOp *node = frame.node;
        if (node->op == op::conditional)
            return stepConditional(node);
        int32_t count = node->op == op::unit ? 1 : node->argc;
        while (frame.next < count) {
            int32_t slot = frame.next++;
            if (node->slot[slot].kind == kind::tree)
                return enter(childOf(node->slot[slot]));
            if (!load(node, slot))
                return false;
        }
        Dual second = duals_.top();
        if (count == 2)
            duals_.pop();
        frames_.pop();
        return combine(node, count, duals_.top(), second);
    }

    bool stepConditional(const VsCnsGenOp *node) noexcept
    {
        VxDimNum condition;
        if (!evaluateSlot(node, 0, settings_, condition, failure_))
            return false;
        frames_.pop();
        int32_t slot = isZero(magnitude(condition)) ? 2 : 1;
        if (node->slot[slot].kind == kind::tree)
            return enter(childOf(node->slot[slot]));
        return load(node, slot);
    }

    /** `first` becomes what the node gives. */
    bool combine(const VsCnsGenOp *node, int32_t count, Dual &first, const Dual &second) noexcept
    {
        Operands of{first, second};
        double derivative = 0.0;
        bool derived = count == 2 ? deriveTwo(node->op, of, derivative) : deriveOne(node->op, of, derivative);
        if (of.valuesAsked) {
            failure_ = valueFailure_;
            return false;
        }
        VxDimNum values[2] = {first.value, second.value};
        bool hasValue = first.hasValue && (count == 1 || second.hasValue) &&
                        applyNode(node, settings_, values, valueFailure_);
        first = {values[0], derivative, hasValue, derived && of.complete};
        return true;
    }

    bool load(const VsCnsGenOp *node, int32_t slot) noexcept
    {
        Dual *dual = duals_.push();
        if (!dual) {
            failure_.number = error::noMemory;
            return false;
        }
        const VsCnsGenSlot &operand = node->slot[slot];
        dual->hasValue = loadLeaf(node, slot, settings_, dual->value, valueFailure_);
        dual->hasDerivative = operand.kind == kind::number || operand.kind == kind::variable;
        dual->derivative = operand.kind == kind::variable && operand.flag == variable_ ? 1.0 : 0.0;
        return true;
    }

    Settings settings_;
    int32_t variable_;
    EvalFailure &failure_;
    EvalFailure valueFailure_; ///< why a value is missing that nobody has asked for yet
    SmallStack<Frame, 16> frames_;
    SmallStack<Dual, 16> duals_;
};

}

bool derive(const VsCnsGenOp *tree, int32_t variable, double &derivative, EvalFailure &failure) noexcept
{
    return Walk(variable, failure).run(tree, derivative);
}

}
