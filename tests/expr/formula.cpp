#include "tests/expr/formula.h"

#include <cstdio>

#include "vx/diagnose.h"
#include "vx/value.hpp"

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

const std::vector<std::string> &corpus()
{
    static const std::vector<std::string> formulas = {
        "1",
        "-5",
        "-a^2",
        "width*height-2*wall*wall",
        "(teeth+2)*module.mm",
        "2^3^2/4/2",
        "a>1 then b else c",
        "[a]>0 then [b c] then 1 else 2 else \"x\"",
        "[my \"quoted ]\" name]+[$x[1]]",
        "1e-3+2.5e+4-.5",
        "sin(30)+cos(a*2)^2-atan2(1,max(2,3))",
        "substr(\"text, with\",1,2)",
        "substr(a,,)",
        "substr(\"abcdef\",2,3)+num2str(4.5)",
        "vector(1,2,3)*2+point(a.x,b.y,c.z)",
        "time()+date()",
        "!(a=1)&b<2|c>3",
        "3.cm.in+len.kg",
        "#1+$a",
        "mod2(7,3)+dec(1.2345,2)",
        "((((a))))",
        "a then -b else +c",
    };
    return formulas;
}

}
