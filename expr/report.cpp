#include "expr/report.h"

#include "talm/base.h"
#include "vx/err.h"
#include "vx/msg.h"
#include "vx/tools.h"
#include "vx/value.hpp"

namespace vx::expr {

namespace {

constexpr int32_t messageSize = 128;
constexpr int32_t userCategory = 6;
constexpr int32_t messageForm = 5;

}

void report(const ParseFailure &failure)
{
    if (failure.silent || VxErrIsDisabled())
        return;
    char text[messageSize];
    text[0] = '\0';
    VxErr(VxToolsErrID(), failure.number, text, sizeof text);
    EsPut(userCategory, messageForm, "%s", text);
}

void report(const EvalFailure &failure)
{
    using HESKET::Talm::Tool::Evaluation::KindName;
    int32_t id = VxToolsErrID();
    switch (failure.number) {
    case 0:
    case error::noMemory: return;
    case error::notEvaluable:
    case error::dimensions: VxErrLogNum(id, failure.number, "", 0); return;
    case error::undefinedVariable: VxErrLogFmt(id, failure.number, "", 0, failure.name); return;
    case error::unmatchedOperands:
        VxErrLogFmt(id, failure.number, "", 0, KindName(failure.leftKind), KindName(failure.rightKind));
        return;
    default:
        VxErrLogMsg(failure.number, 0, "", 0, "%s: %s", failure.node ? operationName(failure.node->op) : "",
                    VxMsg(VxToolsMsgID(), failure.number));
    }
}

}
