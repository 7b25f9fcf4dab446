#include "vx/eval.h"

#include "expr/derivative.h"
#include "expr/numeric.h"
#include "expr/report.h"
#include "expr/unit_result.h"

using namespace vx::expr;

uint32_t VxGenExEvalRcrs(const VsCnsGenOp *tree, void *ctx1, void *ctx2, VxDimNum *result)
{
    if (!tree || !result)
        return 1;
    EvalFailure failure;
    if (evaluate(tree, settingsFor(*result, ctx1, ctx2), *result, failure))
        return 0;
    report(failure);
    return 1;
}

uint32_t VxGenExEvalUnit(int32_t unitClass, VxDimNum *record)
{
    if (!record)
        return 0;
    struct Exponents {
        double length, angle, mass;
    };
    static constexpr Exponents byClass[] = {{0, 0, 0},  {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1},
                                            {-3, 0, 1}, {2, 0, 0}, {3, 0, 0}, {2, 0, 1}};
    constexpr int32_t classes = sizeof byClass / sizeof *byClass;
    const Exponents &exponents = byClass[unitClass >= 0 && unitClass < classes ? unitClass : 0];
    record->len_exp = exponents.length;
    record->ang_exp = exponents.angle;
    record->mass_exp = exponents.mass;
    return 0;
}

uint32_t VxCharExprEval(const char *text, const char *unitName, int32_t *constant, double *result)
{
    if (!result) {
        if (constant)
            *constant = 0;
        return 1;
    }
    VsCnsGenOp *tree = nullptr;
    if (VxParseGeEx(text, constant, &tree) != 0)
        return 1;
    EvalFailure failure;
    bool evaluated = evaluateInUnit(tree, unitName, nullptr, nullptr, *result, failure);
    if (!evaluated)
        report(failure);
    VxGenExFree(&tree);
    return evaluated ? 0 : 1;
}

uint32_t VxGenDrvEvlRcrs(const VsCnsGenOp *tree, int32_t variable, double *derivative)
{
    if (!tree || !derivative)
        return 1;
    EvalFailure failure;
    if (derive(tree, variable, *derivative, failure))
        return 0;
    report(failure);
    return 1;
}
