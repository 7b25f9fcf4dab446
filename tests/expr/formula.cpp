#include "tests/expr/formula.h"

namespace vx::test {

namespace {

std::map<std::string, VxDimNum> *current = nullptr;

uint32_t supply(const char *name, void *, void *, VxDimNum *record)
{
    auto found = current->find(name);
    if (found == current->end())
        return 1;
    *record = found->second;
    return 0;
}

std::string slotShape(const VsCnsGenSlot &slot)
{
    char number[32];
    switch (slot.kind) {
    case 1: return shape(static_cast<const VsCnsGenOp *>(slot.value.ptr));
    case 2: return static_cast<const char *>(slot.value.ptr);
    case 6: std::snprintf(number, sizeof number, "%.15g", slot.value.num); return number;
    case 7: return '"' + std::string(static_cast<const char *>(slot.value.ptr)) + '"';
    case 8: return '.' + std::string(static_cast<const char *>(slot.value.ptr));
    default: return "?";
    }
}

}

std::string shape(const VsCnsGenOp *tree)
{
    std::string text = "(" + std::to_string(tree->op);
    for (int32_t i = 0; i < tree->argc; ++i)
        text += ' ' + slotShape(tree->slot[i]);
    return text + ')';
}

std::string shapeOf(const std::string &text, bool extended)
{
    Parsed parsed(text, extended);
    return parsed.tree ? shape(parsed.tree) : "refused";
}

int32_t parseError(const std::string &text)
{
    VxExprDiag diag;
    return VxExprDiagParse(text.c_str(), 0, 1, &diag) == 0 ? 0 : diag.number;
}

Variables::Variables(std::map<std::string, VxDimNum> values) : values_(std::move(values))
{
    current = &values_;
    VgfVarGetVal = supply;
}

Variables::~Variables()
{
    current = nullptr;
    VgfVarGetVal = nullptr;
    VgfGetUnitConv = nullptr;
    VgCdValIsRad = 0;
    HESKET::Talm::Tool::Evaluation::VgfVarGetValObj = nullptr;
}

Outcome evaluate(const std::string &text, const std::string &unit)
{
    VxExprDiag diag;
    Outcome outcome;
    if (VxExprDiagEval(text.c_str(), unit.c_str(), nullptr, nullptr, 1, &outcome.value, &diag) != 0)
        outcome.error = diag.number;
    return outcome;
}

}
