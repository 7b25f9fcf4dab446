// Making, filling and deleting lists.

#include <gtest/gtest.h>

#include "vx/list.h"

TEST(ListLife, AKeyedListWalksItsExtremeKeysAtOnce)
{
    VxList *list = nullptr;
    ASSERT_EQ(VxListMk(0, sizeof(int32_t), 0, 0, nullptr, &list), 0u);
    for (int32_t key : {INT32_MAX, 5, INT32_MIN})
        ASSERT_EQ(VxListSet(list, key, &key), 0u);
    VxListIter iter;
    int32_t value = 0;
    VxListItrInit2(list, 1, &iter);
    for (int32_t key : {INT32_MIN, 5, INT32_MAX}) {
        ASSERT_EQ(VxListItr(&iter, &value), 0);
        EXPECT_EQ(value, key);
    }
    EXPECT_EQ(VxListItr(&iter, &value), -1);
    VxListItrInit2(list, 2, &iter);
    for (int32_t key : {INT32_MAX, 5, INT32_MIN}) {
        ASSERT_EQ(VxListItr(&iter, &value), 0);
        EXPECT_EQ(value, key);
    }
    EXPECT_EQ(VxListItr(&iter, &value), -1);
    VxListDel(&list);
}
