// How failures reach the user: with the toolkit started and its texts loaded.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "talm/base.h"
#include "tests/expr/formula.h"
#include "vx/diagnose.h"
#include "vx/path.h"
#include "vx/value.hpp"

using namespace vx::test;
using namespace HESKET::Talm::Tool::Evaluation;

namespace {

struct Reports : testing::Test {
    Reports()
    {
        VxPathInit();
        VxToolsInit();
        VxErrClear();
        EsSinkCallback([](void *self, const EsRecord *record) {
            static_cast<Reports *>(self)->seen.emplace_back(record->text);
        }, this);
    }
    ~Reports() override
    {
        EsSinkCallback(nullptr, nullptr);
        VxErrClear();
        VxToolsExit();
    }

    std::vector<std::string> seen;
};

uint32_t parse(const char *text)
{
    VsCnsGenOp *tree = nullptr;
    uint32_t result = VxParseGeEx(text, nullptr, &tree);
    VxGenExFree(&tree);
    return result;
}

TEST_F(Reports, AMalformedFormulaIsPutIntoTheEventLogAndNotFiled)
{
    EXPECT_EQ(parse("sin((1+2a)"), 1U);
    EXPECT_EQ(parse("1+"), 1U);
    EXPECT_EQ(seen, (std::vector<std::string>{"A closing parenthesis is missing.",
                                              "An operator has no valid operand after it."}));
    EXPECT_EQ(VxErrCnt(), 0);
    parse("");
    parse("sin()");
    VxErrDisable();
    parse("1+");
    VxErrEnable();
    EXPECT_EQ(seen.size(), 2U);
}

TEST_F(Reports, AnEvaluationFilesItsFailure)
{
    double result;
    EXPECT_EQ(VxCharExprEval("1.cm+1.kg", "", nullptr, &result), 1U);
    EXPECT_TRUE(VxErrIsLogged(VxToolsErrID(), 83));
    EXPECT_EQ(VxCharExprEval("nobody", "", nullptr, &result), 1U);
    EXPECT_EQ(VxCharExprEval("asin(2)", "", nullptr, &result), 1U);
    EXPECT_TRUE(VxErrIsLogged(0, 187));
    std::string all;
    for (const std::string &text : seen)
        all += text + '\n';
    EXPECT_NE(all.find("nobody"), std::string::npos) << all;
    EXPECT_NE(all.find("asin: The argument is not between -1 and 1."), std::string::npos) << all;
}

TEST_F(Reports, ADiagnosisIsSilentWhenAskedTo)
{
    double result;
    VxExprDiag diag;
    for (const char *text : {"1/0", "1/"})
        VxExprDiagEval(text, "", nullptr, nullptr, 1, &result, &diag);
    EXPECT_TRUE(seen.empty() && VxErrCnt() == 0);
    VxExprDiagEval("1/0", "", nullptr, nullptr, 0, &result, &diag);
    EXPECT_TRUE(VxErrIsLogged(0, 191));
}

TEST_F(Reports, ExceptionsCarryTheTextsOfTheirErrors)
{
    EXPECT_EQ(ErrorUndefineVariable("depth").Text(), "The variable depth is not defined.");
    EXPECT_EQ(ErrorUnmatchOperand(2, 4).Text(), "The operands Vector and String cannot be combined.");
}

}
