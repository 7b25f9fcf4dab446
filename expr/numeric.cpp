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

bool failTwo(EvalFailure &failure, int32_t number, const VsCnsGenOp *node, const VxDimNum &left,
             const VxDimNum &right, const Settings &settings) noexcept
{
    if (number == error::unitMismatch)
        return failDimensions(failure, number, node, left, settings.expected);
    if (number == error::dimensions)
        return failDimensions(failure, number, node, left, right);
    return fail(failure, number, node);
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

/**
 * A number on the walk's stack. Most are plain, without dimension and with
 * factor 1, and then only their value is written and read.
 */
struct Number {
    VxDimNum record;
    bool plain;

    void setPlain(double value) noexcept
    {
        record.value = value;
        plain = true;
    }
    void complete() noexcept
    {
        if (plain)
            record = plainNumber(record.value);
    }
    void classify() noexcept
    {
        plain =
            record.factor == 1.0 && record.len_exp == 0.0 && record.ang_exp == 0.0 && record.mass_exp == 0.0;
    }
};

/**
 * What most nodes are: an operation on two plain numbers.
 * @return false for another operation, or one that is not defined for them
 */
bool applyToPlain(int32_t code, double l, double r, double &result) noexcept
{
    switch (code) {
    case op::add: result = l + r; return true;
    case op::subtract: result = l - r; return true;
    case op::multiply: result = l * r; return true;
    case op::divide: result = l / r; return !isZero(r);
    case op::power: return raise(l, r, result) == 0;
    case op::less: result = l < r ? 1.0 : 0.0; return true;
    case op::greater: result = l > r ? 1.0 : 0.0; return true;
    default: return false;
    }
}

/** A node and the next of its slots to evaluate. */
struct Position {
    const VsCnsGenOp *node;
    int32_t slot;
};

/**
 * A walk over a tree in the order of its operands. The nodes above and the
 * numbers stand on stacks of their own, so that neither a long chain nor a
 * deep nest shows on the thread's stack.
 */
class Walk {
public:
    Walk(const Settings &settings, EvalFailure &failure) noexcept : settings_(settings), failure_(failure) {}

    bool run(const VsCnsGenOp *tree, VxDimNum &result) noexcept
    {
        if (!enter(tree))
            return false;
        for (;;) {
            Step step = node_->argc == 3 ? conditional() : operation();
            if (step == Step::failed)
                return false;
            if (step == Step::down)
                continue;
            if (above_.empty())
                break;
            node_ = above_.top().node;
            slot_ = above_.top().slot;
            above_.pop();
        }
        const Number &number = numbers_.top();
        result = number.plain ? plainNumber(number.record.value) : number.record;
        return true;
    }

    /** The node that gave the result, seen through conditionals; null for a leaf. */
    const VsCnsGenOp *last() const noexcept { return last_; }

private:
    enum class Step { failed, down, done };

    bool enter(const VsCnsGenOp *node) noexcept
    {
        if (!node || node->argc < 1 || node->argc > 3)
            return fail(failure_, error::notEvaluable, node);
        node_ = node;
        slot_ = 0;
        return true;
    }

    Step descend(const VsCnsGenSlot &slot) noexcept
    {
        Position *above = above_.push();
        if (!above) {
            fail(failure_, error::noMemory, node_);
            return Step::failed;
        }
        above->node = node_;
        above->slot = slot_;
        return enter(childOf(slot)) ? Step::down : Step::failed;
    }

    Step operation() noexcept
    {
        const VsCnsGenOp *node = node_;
        int32_t count = node->op == op::unit ? 1 : node->argc;
        while (slot_ < count) {
            const VsCnsGenSlot &slot = node->slot[slot_++];
            if (slot.kind == kind::tree)
                return descend(slot);
            if (!load(slot, slot_ - 1))
                return Step::failed;
        }
        last_ = node;
        return (count == 2 ? applyTwoNumbers() : applyOneNumber()) ? Step::done : Step::failed;
    }

    bool applyTwoNumbers() noexcept
    {
        Number &l = numbers_.below(), &r = numbers_.top();
        double result;
        if (l.plain && r.plain && applyToPlain(node_->op, l.record.value, r.record.value, result)) {
            l.setPlain(result);
            numbers_.pop();
            return true;
        }
        l.complete();
        r.complete();
        if (int32_t number = applyTwo(settings_, node_->op, l.record, r.record))
            return failTwo(failure_, number, node_, l.record, r.record, settings_);
        l.classify();
        numbers_.pop();
        return true;
    }

    bool applyOneNumber() noexcept
    {
        Number &x = numbers_.top();
        x.complete();
        if (!applyNode(node_, settings_, &x.record, failure_))
            return false;
        x.classify();
        return true;
    }

    /** The branch taken stands for the whole. */
    Step conditional() noexcept
    {
        const VsCnsGenOp *node = node_;
        if (node->op != op::conditional) {
            fail(failure_, error::notEvaluable, node);
            return Step::failed;
        }
        if (slot_++ == 0) {
            if (node->slot[0].kind == kind::tree)
                return descend(node->slot[0]);
            if (!load(node->slot[0], 0))
                return Step::failed;
        }
        numbers_.top().complete();
        int32_t branch = isZero(magnitude(numbers_.top().record)) ? 2 : 1;
        numbers_.pop();
        if (node->slot[branch].kind == kind::tree)
            return enter(childOf(node->slot[branch])) ? Step::down : Step::failed;
        last_ = nullptr;
        return load(node->slot[branch], branch) ? Step::done : Step::failed;
    }

    bool load(const VsCnsGenSlot &slot, int32_t index) noexcept
    {
        Number *number = numbers_.push();
        if (!number)
            return fail(failure_, error::noMemory, node_);
        if (slot.kind == kind::number) {
            number->setPlain(slot.value.num);
            return true;
        }
        if (!loadLeaf(node_, index, settings_, number->record, failure_))
            return false;
        number->classify();
        return true;
    }

    const Settings &settings_;
    EvalFailure &failure_;
    // Where the walk stands; two members, since each is written alone and read back at once.
    const VsCnsGenOp *node_ = nullptr;
    int32_t slot_ = 0;
    const VsCnsGenOp *last_ = nullptr;
    SmallStack<Position, 16> above_;
    SmallStack<Number, 16> numbers_;
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

bool applyNode(const VsCnsGenOp *node, const Settings &settings, VxDimNum *operands,
               EvalFailure &failure) noexcept
{
    if (node->op == op::unit)
        return applyUnitNode(node, operands[0], failure);
    int32_t number = node->argc == 1 ? applyOne(settings, node->op, operands[0])
                                     : applyTwo(settings, node->op, operands[0], operands[1]);
    if (number == 0)
        return true;
    return failTwo(failure, number, node, operands[0], operands[node->argc - 1], settings);
}

void adoptExpected(const VsCnsGenOp *last, const Settings &settings, VxDimNum &result) noexcept
{
    if (!last || (last->op != op::add && last->op != op::subtract) || !isDimensionless(result))
        return;
    copyDimension(settings.expected, result);
    result.factor = settings.expected.factor;
}

bool evaluate(const VsCnsGenOp *tree, const Settings &settings, VxDimNum &result,
              EvalFailure &failure) noexcept
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
