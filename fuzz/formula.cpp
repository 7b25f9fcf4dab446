// Formulas from anywhere: parsed, listed, evaluated, printed nowhere, freed.

#include "fuzz/fuzz.h"
#include "text/codepage.h"
#include "vx/diagnose.hpp"
#include "vx/eval.hpp"
#include "vx/parse.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    static constexpr int32_t pages[] = {932, 936, 949, 950, 1252, 65001};
    vx::text::setCodePage(pages[data[0] % 6], 0);
    const std::string text(textFrom(1, data, size));

    VxExprDiag diag;
    uint32_t parsed = VxExprDiagParse(text.c_str(), data[0] & 0x80, 1, &diag);
    require((parsed == 0) == (diag.number == 0));

    double result;
    VxExprDiagEval(text.c_str(), data[0] & 0x40 ? "cm" : "", nullptr, nullptr, 1, &result, &diag);
    VxDimNum number = {0.0, 0.0, 0.0, 0.0, 1.0};
    HESKET::Talm::Tool::Evaluation::VxEvalValue value;
    VxExprDiagEvalValue(text.c_str(), nullptr, nullptr, 1, &number, &value, &diag);

    for (const std::string &name : VxParseVarInquire(text.c_str())) {
        // Each replacement is as long as the name, so that the copy is as long as the text.
        std::string out(text.size() + 1, '\0');
        VxParseVarReplace(name.c_str(), std::string(name.size(), 'x').c_str(), text.c_str(), out.data());
    }
    VsCnsGenOp *tree = nullptr;
    double derivative;
    if (parsed == 0 && VxParseGeExExtended(text.c_str(), &tree) == 0)
        VxGenDrvEvlRcrs(tree, 0, &derivative);
    VxGenExFree(&tree);
    return 0;
}
