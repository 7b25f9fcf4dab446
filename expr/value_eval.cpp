#include "vx/eval.hpp"
#include "expr/value_eval.h"

#include <algorithm>
#include <cstdarg>
#include <new>
#include <optional>
#include <utility>
#include <vector>

#include "expr/functions.h"
#include "expr/numeric.h"
#include "expr/report.h"
#include "platform/os/os.h"
#include "text/codepage.h"
#include "vx/tools.h"

namespace vx::expr {

using namespace HESKET::Talm::Tool::Evaluation;

namespace {

constexpr size_t shortTextSize = 32;

/** What an operand came to; `number` counts only beside a number. */
struct Result {
    VxEvalValue value;
    VxDimNum number = plainNumber(1.0);
    /** Sum or difference of plain numbers, which the expected unit may be laid upon. */
    const VsCnsGenOp *last = nullptr;
};

int32_t kindOf(const VxEvalValue &value)
{
    return value.which() + 1;
}

std::string format(const char *pattern, ...)
{
    char text[shortTextSize];
    va_list args;
    va_start(args, pattern);
    os::formatArgs(text, sizeof text, pattern, args);
    va_end(args);
    return text;
}

/** The operators of values: what two kinds that are not both numbers give together. */
class Combination : public boost::static_visitor<std::optional<VxEvalValue>> {
public:
    explicit Combination(int32_t code) : code_(code) {}

    std::optional<VxEvalValue> operator()(TsVector l, const TsVector &r) const
    {
        switch (code_) {
        case op::add: return l += r;
        case op::subtract: return l -= r;
        case op::multiply: return l *= r;
        default: return {};
        }
    }
    std::optional<VxEvalValue> operator()(const TsPoint &l, const TsVector &r) const
    {
        switch (code_) {
        case op::add: return TsPoint(l.x() + r.x(), l.y() + r.y(), l.z() + r.z());
        case op::subtract: return TsPoint(l.x() - r.x(), l.y() - r.y(), l.z() - r.z());
        default: return {};
        }
    }
    std::optional<VxEvalValue> operator()(const TsPoint &l, const TsPoint &r) const
    {
        if (code_ != op::subtract)
            return {};
        return TsVector(l.x() - r.x(), l.y() - r.y(), l.z() - r.z());
    }
    std::optional<VxEvalValue> operator()(double l, TsVector r) const
    {
        if (code_ != op::multiply)
            return {};
        return r *= l;
    }
    std::optional<VxEvalValue> operator()(TsVector l, double r) const
    {
        switch (code_) {
        case op::multiply: return l *= r;
        case op::divide: return l /= r;
        default: return {};
        }
    }
    std::optional<VxEvalValue> operator()(const std::string &l, const std::string &r) const
    {
        if (code_ != op::add)
            return {};
        return l + r;
    }
    template <typename L, typename R> std::optional<VxEvalValue> operator()(const L &, const R &) const
    {
        return {};
    }

private:
    int32_t code_;
};

bool isArithmetic(const VsCnsGenOp *node)
{
    return node->argc == 2 && node->op >= op::add && node->op <= op::divide;
}

bool isGeometric(const VsCnsGenOp *node)
{
    return node->argc == 1 && node->op >= op::firstGeometric && node->op <= op::lastGeometric;
}

/** A walk as for numbers; only the four operators and the text of substr hold values that others wait for. */
class Walk {
public:
    Walk(const Settings &settings, EvalFailure &failure) : settings_(settings), failure_(failure) {}

    Result run(const VsCnsGenOp *tree)
    {
        enter(tree);
        while (!frames_.empty())
            step();
        return std::move(results_.back());
    }

private:
    struct Frame {
        const VsCnsGenOp *node;
        int32_t next;
    };

    [[noreturn]] void fail(int32_t number, const VsCnsGenOp *node, int32_t operand = -1)
    {
        failure_.number = number;
        failure_.node = node;
        failure_.operand = operand;
        throw Error();
    }

    void enter(const VsCnsGenOp *node)
    {
        if (!node || node->argc < 0 || node->argc > 3)
            fail(error::notEvaluable, node);
        if (isArithmetic(node) || (node->op == op::substr && node->argc == 3))
            frames_.push_back({node, 0});
        else
            results_.push_back(wholeNode(node));
    }

    void step()
    {
        Frame &frame = frames_.back();
        const VsCnsGenOp *node = frame.node;
        int32_t count = isArithmetic(node) ? 2 : 1;
        if (frame.next < count) {
            int32_t slot = frame.next++;
            if (node->slot[slot].kind == kind::tree)
                enter(childOf(node->slot[slot]));
            else
                results_.push_back(leaf(node, slot));
            return;
        }
        frames_.pop_back();
        if (count == 1) {
            results_.back().value = pieceOf(node, results_.back().value);
            return;
        }
        Result right = std::move(results_.back());
        results_.pop_back();
        combine(node, results_.back(), right);
    }

    /** A node that needs no value but those it reads itself. */
    Result wholeNode(const VsCnsGenOp *node)
    {
        Result result;
        switch (node->op) {
        case op::leaf: return leaf(node, 0);
        case op::vector:
            result.value = TsVector(component(node, 0), component(node, 1), component(node, 2));
            return result;
        case op::point:
            result.value = TsPoint(component(node, 0), component(node, 1), component(node, 2));
            return result;
        case op::num2str: result.value = format("%.7g", component(node, 0)); return result;
        case op::time:
        case op::date: result.value = now(node); return result;
        default: break;
        }
        if (isGeometric(node))
            return askHost(geometricText(node), node, -1);
        if (!evaluate(node, settings_, result.number, failure_))
            throw Error();
        result.value = magnitude(result.number);
        result.last = node;
        return result;
    }

    Result leaf(const VsCnsGenOp *node, int32_t slot)
    {
        const VsCnsGenSlot &operand = node->slot[slot];
        Result result;
        if (operand.kind == kind::text && operand.value.ptr) {
            result.value = std::string(textOf(operand));
            return result;
        }
        if (operand.kind == kind::variable && operand.value.ptr && VgfVarGetValObj &&
            VgfVarGetValObj(textOf(operand), &result.value) == 0) {
            if (const double *number = boost::get<double>(&result.value))
                result.number = plainNumber(*number);
            return result;
        }
        if (!loadLeaf(node, slot, settings_, result.number, failure_)) {
            if (failure_.number == error::undefinedVariable)
                throw ErrorUndefineVariable(failure_.name);
            throw Error();
        }
        result.value = magnitude(result.number);
        return result;
    }

    double component(const VsCnsGenOp *node, int32_t slot)
    {
        VxDimNum number;
        if (slot >= node->argc)
            fail(error::notEvaluable, node);
        if (!evaluateSlot(node, slot, settings_, number, failure_))
            throw Error();
        return magnitude(number);
    }

    void combine(const VsCnsGenOp *node, Result &left, const Result &right)
    {
        int32_t l = kindOf(left.value), r = kindOf(right.value);
        if (l == 1 && r == 1) {
            combineNumbers(node, left, right);
            return;
        }
        auto value = boost::apply_visitor(Combination(node->op), left.value, right.value);
        if (!value) {
            failure_.number = error::unmatchedOperands;
            failure_.node = node;
            failure_.leftKind = l;
            failure_.rightKind = r;
            throw ErrorUnmatchOperand(l, r);
        }
        left.value = std::move(*value);
        left.number = plainNumber(1.0);
    }

    void combineNumbers(const VsCnsGenOp *node, Result &left, const Result &right)
    {
        VxDimNum numbers[2] = {left.number, right.number};
        if (node->op == op::divide && isZero(magnitude(numbers[1]))) {
            // Values are divided without a test for zero; infinities show themselves.
            double quotient = magnitude(numbers[0]) / magnitude(numbers[1]);
            numbers[1].value = numbers[1].factor = 1.0;
            applyNode(node, settings_, numbers, failure_);
            numbers[0].value = quotient;
        } else if (!applyNode(node, settings_, numbers, failure_)) {
            throw Error();
        }
        left.number = numbers[0];
        left.value = magnitude(numbers[0]);
        left.last = node;
    }

    std::string pieceOf(const VsCnsGenOp *node, const VxEvalValue &value)
    {
        const auto *whole = boost::get<std::string>(&value);
        if (!whole)
            fail(error::notEvaluable, node, 0);
        for (int32_t slot = 1; slot < 3; ++slot)
            if (node->slot[slot].kind != kind::number)
                fail(error::notEvaluable, node, slot);
        const char *p = whole->c_str();
        const text::CodePage &page = text::codePage();
        auto skip = [&](double characters) {
            for (; characters >= 1.0 && *p; characters -= 1.0)
                p += text::charBytes(page, p);
            return p;
        };
        const char *begin = skip(node->slot[1].value.num);
        return {begin, skip(node->slot[2].value.num)};
    }

    std::string now(const VsCnsGenOp *node)
    {
        os::CalendarTime local;
        if (os::localTime(os::wallSeconds(), local) != os::Error::none)
            fail(error::notEvaluable, node);
        if (node->op == op::time)
            return format("%0.2d:%0.2d:%0.2d", local.hour, local.minute, local.second);
        return format("%0.4d/%0.2d/%0.2d", local.year, local.month, local.day);
    }

    /** The host evaluates geometry: it is asked by the text of the call. */
    Result askHost(std::string call, const VsCnsGenOp *node, int32_t operand)
    {
        Result result;
        if (VgfVarGetValObj && VgfVarGetValObj(call.c_str(), &result.value) == 0) {
            if (const double *number = boost::get<double>(&result.value))
                result.number = plainNumber(*number);
            return result;
        }
        failure_.number = error::undefinedVariable;
        failure_.node = node;
        failure_.operand = operand;
        throw ErrorUndefineVariable(std::move(call));
    }

    std::string geometricText(const VsCnsGenOp *node)
    {
        std::string call, closing;
        for (; isGeometric(node); node = childOf(node->slot[0])) {
            call.append(functionName(node->op)).append("(");
            closing += ')';
            const VsCnsGenSlot &operand = node->slot[0];
            if (operand.kind == kind::tree && operand.value.ptr && isGeometric(childOf(operand)))
                continue;
            if ((operand.kind == kind::variable || operand.kind == kind::text) && operand.value.ptr)
                call += textOf(operand);
            else
                call += format("%.15g", component(node, 0));
            break;
        }
        return call + closing;
    }

    const Settings &settings_;
    EvalFailure &failure_;
    std::vector<Frame> frames_;
    std::vector<Result> results_;
};

}

void evaluateValue(const VsCnsGenOp *tree, void *ctx1, void *ctx2, VxDimNum &number, VxEvalValue &value,
                   EvalFailure &failure)
{
    Settings settings = settingsFor(number, ctx1, ctx2);
    Result result = Walk(settings, failure).run(tree);
    if (kindOf(result.value) == 1) {
        adoptExpected(result.last, settings, result.number);
        result.value = magnitude(result.number);
        number = result.number;
    } else {
        number.value = 1.0;
    }
    value = std::move(result.value);
}

}

uint32_t VxGenExEval(const VsCnsGenOp *tree, VxDimNum *number,
                     HESKET::Talm::Tool::Evaluation::VxEvalValue *value)
{
    using namespace vx::expr;
    if (!tree || !number || !value)
        return 1;
    EvalFailure failure;
    try {
        evaluateValue(tree, nullptr, nullptr, *number, *value, failure);
        return 0;
    } catch (const HESKET::Talm::Tool::Evaluation::ErrorUndefineVariable &undefined) {
        failure.name = undefined.name.c_str();
        report(failure);
    } catch (const HESKET::Talm::Tool::Evaluation::Error &) {
        report(failure);
    } catch (const std::bad_alloc &) {
    }
    return 1;
}
