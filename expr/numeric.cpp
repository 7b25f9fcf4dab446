#include "expr/numeric.h"

#include "expr/small_stack.h"
#include "vx/tools.h"

namespace vx::expr {

namespace {

bool fail(EvalFailure &failure, int32_t number, const VsCnsGenOp *node, int32_t operand = -1) noexcept
{
    failure.number = number;
    failure.node = node;
    failure.operand = operand;
    return false;
}

bool failDimensions(EvalFailure &failure, int32_t number, const VsCnsGenOp *node, const VxDimNum &left,
                    const VxDimNum &right) noexcept
{
    fail(failure, number, node);
    failure.hasDimensions = true;
    failure.left = left;
    failure.right = right;
    return false;
}

bool applyUnitNode(const VsCnsGenOp *node, VxDimNum &operand, EvalFailure &failure) noexcept
{
    VxDimNum unit = plainNumber(1.0);
    int32_t number = applyUnit(textOf(node->slot[1]), operand, unit);
    if (number == 0)
        return true;
    if (number == error::dimensions)
        return failDimensions(failure, number, node, operand, unit);
    return fail(failure, number, node, 1);
}

/** Where a walk stands in a node: the next slot to evaluate. */
struct Frame {
    const VsCnsGenOp *node;
    int32_t next;
};

/**
 * A walk over a tree in the order of its operands. Nodes and numbers stand on
 * stacks of their own, so that neither a long chain nor a deep nest shows on
 * the thread's stack.
 */
class Walk {
public:
    Walk(const Settings &settings, EvalFailure &failure) noexcept : settings_(settings), failure_(failure) {}

    bool run(const VsCnsGenOp *tree, VxDimNum &result) noexcept
    {
        if (!enter(tree))
            return false;
        while (!frames_.empty())
            if (!step(frames_.top()))
                return false;
        result = numbers_.top();
        return true;
    }

    /** The node that gave the result, seen through conditionals; null for a leaf. */
    const VsCnsGenOp *last() const noexcept { return last_; }

private:
    bool enter(const VsCnsGenOp *node) noexcept
    {
        if (!node || node->argc < 1 || node->argc > 3)
            return fail(failure_, error::notEvaluable, node);
        return frames_.push({node, 0}) || fail(failure_, error::noMemory, node);
    }

    bool step(Frame &frame) noexcept
    {
        const VsCnsGenOp *node = frame.node;
        if (node->argc == 3)
            return stepConditional(frame);
        int32_t count = node->op == op::unit ? 1 : node->argc;
        while (frame.next < count) {
            int32_t slot = frame.next++;
            if (node->slot[slot].kind == kind::tree)
                return enter(childOf(node->slot[slot]));
            if (!load(node, slot))
                return false;
        }
        VxDimNum *operands = &numbers_.top() - (count - 1);
        if (!applyNode(node, settings_, operands, failure_))
            return false;
        if (count == 2)
            numbers_.pop();
        last_ = node;
        frames_.pop();
        return true;
    }

    bool stepConditional(Frame &frame) noexcept
    {
        const VsCnsGenOp *node = frame.node;
        if (node->op != op::conditional)
            return fail(failure_, error::notEvaluable, node);
        if (frame.next == 0) {
            frame.next = 1;
            if (node->slot[0].kind == kind::tree)
                return enter(childOf(node->slot[0]));
            if (!load(node, 0))
                return false;
        }
        int32_t slot = isZero(magnitude(numbers_.top())) ? 2 : 1;
        numbers_.pop();
        frames_.pop();
        if (node->slot[slot].kind == kind::tree)
            return enter(childOf(node->slot[slot]));
        last_ = nullptr;
        return load(node, slot);
    }

    bool load(const VsCnsGenOp *node, int32_t slot) noexcept
    {
        VxDimNum *number = numbers_.push();
        if (!number)
            return fail(failure_, error::noMemory, node);
        return loadLeaf(node, slot, settings_, *number, failure_);
    }

    const Settings &settings_;
    EvalFailure &failure_;
    const VsCnsGenOp *last_ = nullptr;
    SmallStack<Frame, 16> frames_;
    SmallStack<VxDimNum, 16> numbers_;
};

}

bool loadLeaf(const VsCnsGenOp *node, int32_t slot, const Settings &settings, VxDimNum &result,
              EvalFailure &failure) noexcept
{
    const VsCnsGenSlot &operand = node->slot[slot];
    if (operand.kind == kind::number) {
        result = plainNumber(operand.value.num);
        return true;
    }
    if (operand.kind != kind::variable || !operand.value.ptr)
        return fail(failure, error::notEvaluable, node, slot);
    result = settings.expected;
    if (VgfVarGetVal && VgfVarGetVal(textOf(operand), settings.ctx1, settings.ctx2, &result) == 0)
        return true;
    failure.name = textOf(operand);
    return fail(failure, error::undefinedVariable, node, slot);
}

bool applyNode(const VsCnsGenOp *node, const Settings &settings, VxDimNum *operands, EvalFailure &failure) noexcept
{
    if (node->op == op::unit)
        return applyUnitNode(node, operands[0], failure);
    int32_t number = node->argc == 1 ? applyOne(settings, node->op, operands[0])
                                     : applyTwo(settings, node->op, operands[0], operands[1]);
    if (number == 0)
        return true;
    if (number == error::unitMismatch)
        return failDimensions(failure, number, node, operands[0], settings.expected);
    if (number == error::dimensions)
        return failDimensions(failure, number, node, operands[0], operands[1]);
    return fail(failure, number, node);
}

void adoptExpected(const VsCnsGenOp *last, const Settings &settings, VxDimNum &result) noexcept
{
    if (!last || (last->op != op::add && last->op != op::subtract) || !isDimensionless(result))
        return;
    copyDimension(settings.expected, result);
    result.factor = settings.expected.factor;
}

bool evaluate(const VsCnsGenOp *tree, const Settings &settings, VxDimNum &result, EvalFailure &failure) noexcept
{
    Walk walk(settings, failure);
    if (!walk.run(tree, result))
        return false;
    adoptExpected(walk.last(), settings, result);
    return true;
}

bool evaluateSlot(const VsCnsGenOp *node, int32_t slot, const Settings &settings, VxDimNum &result,
                  EvalFailure &failure) noexcept
{
    if (node->slot[slot].kind != kind::tree)
        return loadLeaf(node, slot, settings, result, failure);
    Walk walk(settings, failure);
    return walk.run(childOf(node->slot[slot]), result);
}

}
