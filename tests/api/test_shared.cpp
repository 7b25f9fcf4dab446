// The shared library as an application loads it.

#include <thread>

#include <gtest/gtest.h>

#include "vx/err.h"
#include "vx/eval.hpp"
#include "vx/mem.h"
#include "vx/msg.h"
#include "vx/path.h"
#include "vx/tools.h"

namespace {

using namespace HESKET::Talm::Tool::Evaluation;

TEST(SharedLibrary, StartsEvaluatesStopsAndStartsAgain)
{
    for (int start = 0; start < 2; ++start) {
        ASSERT_EQ(VxPathInit(), 0u);
        ASSERT_EQ(VxToolsInit(), 0u);
        ASSERT_EQ(VxMathInit(), 0u);
        ASSERT_EQ(VxDmgrInit(), 0u);
        ASSERT_EQ(VxMemInit(), 0u);
        EXPECT_STREQ(VxMsg(VxToolsMsgID(), 191), "Division by zero.");

        double result = 0;
        EXPECT_EQ(VxCharExprEval("2.in * 3", "mm", nullptr, &result), 0u);
        EXPECT_DOUBLE_EQ(result, 152.4);
        EXPECT_NE(VxCharExprEval("1.mm + 1.kg", "mm", nullptr, &result), 0u);
        // The second start may come within the second in which a repeat is not filed.
        EXPECT_TRUE(VxErrIsLogged(VxToolsErrID(), 83) || start > 0);
        VxErrClear();

        for (auto exit : {VxMemExit, VxDmgrExit, VxMathExit, VxToolsExit})
            exit();
    }
}

TEST(SharedLibrary, ItsTypesCrossTheEdge)
{
    VsCnsGenOp *tree = nullptr;
    int32_t constant = 0;
    ASSERT_EQ(VxParseGeEx("vector(1, 2, 3) * 2", &constant, &tree), 0u);
    VxDimNum number{1, 0, 0, 0, 1};
    VxEvalValue value;
    ASSERT_EQ(VxGenExEval(tree, &number, &value), 0u);
    EXPECT_DOUBLE_EQ(boost::get<TsVector>(value).z(), 6);
    VxGenExFree(&tree);
    EXPECT_THROW(throw ErrorUndefineVariable("width"), Error);
}

}
