// How failures reach the user: with the toolkit started and its texts loaded.

#include "tests/expr/formula.h"
#include "tests/session/started_toolkit.h"
#include "tests/support/error_log.h"

using namespace vx::test;
using namespace HESKET::Talm::Tool::Evaluation;

namespace {

struct Reports : StartedToolkit {
    std::string seen() const
    {
        std::string all;
        for (const auto &event : log.events)
            all += event.text + '\n';
        return all;
    }

    RecordedEvents log;
};

TEST_F(Reports, AMalformedFormulaIsPutIntoTheEventLogAndNotFiled)
{
    VsCnsGenOp *tree = nullptr;
    for (const char *text : {"sin((1+2a)", "1+", "", "sin()"})
        EXPECT_EQ(VxParseGeEx(text, nullptr, &tree), 1U);
    Parsed quiet("1+");
    EXPECT_EQ(seen(), "A closing parenthesis is missing.\nAn operator has no valid operand after it.\n");
    EXPECT_EQ(VxErrCnt(), 0);
}

TEST_F(Reports, AnEvaluationFilesItsFailure)
{
    double result;
    for (const char *text : {"1.cm+1.kg", "nobody", "asin(2)"})
        EXPECT_EQ(VxCharExprEval(text, "", nullptr, &result), 1U);
    EXPECT_TRUE(VxErrIsLogged(VxToolsErrID(), 83) && VxErrIsLogged(0, 187));
    for (const char *part : {"nobody", "asin: The argument is not between -1 and 1."})
        EXPECT_NE(seen().find(part), std::string::npos) << seen();
}

TEST_F(Reports, ADiagnosisIsSilentWhenAskedTo)
{
    double result;
    VxExprDiag diag;
    for (const char *text : {"1/0", "1/"})
        VxExprDiagEval(text, "", nullptr, nullptr, 1, &result, &diag);
    EXPECT_TRUE(log.events.empty() && VxErrCnt() == 0);
    VxExprDiagEval("1/0", "", nullptr, nullptr, 0, &result, &diag);
    EXPECT_TRUE(VxErrIsLogged(0, 191));
}

TEST_F(Reports, ExceptionsCarryTheTextsOfTheirErrors)
{
    EXPECT_EQ(ErrorUndefineVariable("depth").Text(), "The variable depth is not defined.");
    EXPECT_EQ(ErrorUnmatchOperand(2, 4).Text(), "The operands Vector and String cannot be combined.");
}

}
