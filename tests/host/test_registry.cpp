#include "talm/base.hpp"

#include <gtest/gtest.h>

using HESKET::Talm::Ap::Base;

namespace {

TEST(Registry, NumbersAreAbsentUntilSetAndAfterTheyAreTakenBack)
{
    int variable = 0, other = 0;
    Base &base = Base::Instance();
    EXPECT_EQ(ApBase(), &base);
    for (int32_t number : {0, 1023}) {
        EXPECT_EQ(ApBaseGetVariable(number), nullptr);
        base.SetVariable(number, &variable);
        base.SetFunction(number, &other);
        EXPECT_EQ(ApBaseGetVariable(number), &variable);
        EXPECT_EQ(ApBaseGetFunction(number), &other);
        base.SetVariable(number, nullptr);
        base.SetFunction(number, nullptr);
        EXPECT_EQ(base.Variable(number), nullptr);
        EXPECT_EQ(base.Function(number), nullptr);
    }
    for (int32_t number : {-1, 1024}) {
        base.SetVariable(number, &variable);
        base.SetFunction(number, &other);
        EXPECT_EQ(ApBaseGetVariable(number), nullptr);
        EXPECT_EQ(ApBaseGetFunction(number), nullptr);
    }
}

}
