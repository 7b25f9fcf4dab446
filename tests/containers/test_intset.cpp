#include <algorithm>
#include <random>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/session/started_toolkit.h"
#include "tests/support/faults.h"
#include "vx/intset.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Values = std::vector<int32_t>;

constexpr int32_t array = 2;

VxList *newList(int32_t layout, int32_t elemSize = sizeof(int32_t), int32_t capacity = 4)
{
    VxList *list = nullptr;
    EXPECT_EQ(VxListMk(layout, elemSize, capacity, 4, nullptr, &list), 0u);
    return list;
}

/** A set and its value list. */
struct Set {
    VxIntSet set{};

    explicit Set(VxList *values = nullptr) { EXPECT_EQ(VxIntSetInit(values, &set), 0u); }
    ~Set()
    {
        VxIntSetPurge(&set);
        VxListDel(&set.values);
    }
    Set(const Set &) = delete;
    Set &operator=(const Set &) = delete;

    bool add(int32_t value)
    {
        int32_t added = -1;
        EXPECT_EQ(VxIntSetAdd(&set, value, &added), 0u);
        return added == 1;
    }
    bool has(int32_t value) { return VxIntSetContains(&set, value); }

    Values members(int32_t direction = 0)
    {
        VxListIter walk;
        EXPECT_EQ(VxIntSetItrInit(&set, direction, &walk), 0u);
        Values all;
        int32_t value = 0, end = 0;
        while ((end = VxIntSetItr(&walk, &value)) == 0)
            all.push_back(value);
        EXPECT_EQ(end, -1);
        return all;
    }
    Values membersByPointer()
    {
        VxListIter walk;
        Values all;
        for (const int32_t *at = VxIntSetBegin(&set, &walk); at; at = VxIntSetIncr(&walk))
            all.push_back(*at);
        return all;
    }
};

}

TEST(IntSet, agreesWithAVectorThroughGrowthPurgesAndRemovals)
{
    unsigned seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    for (int32_t layout : {-1, 1, array, 3}) {
        SCOPED_TRACE(testing::Message() << "value list of layout " << layout);
        Set set(layout < 0 ? nullptr : newList(layout));
        Values model;
        int32_t range = 12;
        for (int step = 0; step < 4000 && !testing::Test::HasFailure(); ++step) {
            if (step % 1000 == 500)
                range = range == 12 ? 3000 : 12;
            int32_t value = static_cast<int32_t>(random()) % range;
            auto known = std::find(model.begin(), model.end(), value);
            bool isKnown = known != model.end();
            EXPECT_EQ(set.has(value), isKnown);
            switch (random() % (range == 12 ? 6u : 16u)) {
            case 0:
            case 1:
                EXPECT_EQ(VxIntSetDelVal(&set.set, value), isKnown ? 0u : 1u);
                if (isKnown)
                    model.erase(known);
                break;
            case 2:
                if (layout >= 0) {
                    EXPECT_EQ(VxIntSetPurge(&set.set), 0u);
                }
                break;
            case 3: EXPECT_EQ(VxIntSetOptimize(&set.set), 0u); break;
            default:
                EXPECT_EQ(set.add(value), !isKnown);
                if (!isKnown)
                    model.push_back(value);
            }
            if (step % 997 == 0) {
                EXPECT_EQ(VxIntSetReset(&set.set), 0u);
                model.clear();
            }
            EXPECT_EQ(VxIntSetEmpty(&set.set), model.empty());
            if (step % 8 == 0) {
                EXPECT_EQ(set.members(), model);
            }
            if (set.set.index) {
                EXPECT_EQ(set.set.index->count, static_cast<int32_t>(model.size()));
            }
        }
    }
}

TEST(IntSet, buildsItsIndexForTheEighthAddition)
{
    Set set(newList(array));
    for (int32_t value = 0; value < 7; ++value)
        EXPECT_TRUE(set.add(value));
    EXPECT_EQ(set.set.index, nullptr);
    VxListIter walk;
    EXPECT_EQ(VxIntSetBegin(&set.set, &walk), set.set.values->data) << "pointers lead into the value list";
    EXPECT_FALSE(set.add(3));
    EXPECT_NE(set.set.index, nullptr) << "a value that is there counts too";
    VxList *index = nullptr;
    EXPECT_EQ(VxIntSetKeyList(&set.set, &index), 0u);
    EXPECT_EQ(index, set.set.index);
    EXPECT_EQ(index->elemSize, 1);
    EXPECT_EQ(VxIntSetPurge(&set.set), 0u);
    EXPECT_TRUE(set.has(6));

    EXPECT_EQ(VxIntSetOptimize(&set.set), 0u);
    EXPECT_NE(set.set.index, nullptr) << "seven are worth it";
    VxIntSetPurge(&set.set);
    VxIntSetDelVal(&set.set, 6);
    EXPECT_EQ(VxIntSetOptimize(&set.set), 0u);
    EXPECT_EQ(set.set.index, nullptr) << "six are not";
}

TEST(IntSet, withoutAValueListWalksItsKeys)
{
    Set set;
    EXPECT_TRUE(VxIntSetEmpty(&set.set));
    EXPECT_THAT(set.members(), IsEmpty());
    EXPECT_THAT(set.membersByPointer(), IsEmpty());
    for (int32_t value : {5, -3, INT32_MAX, INT32_MIN, 0})
        EXPECT_TRUE(set.add(value));
    EXPECT_THAT(set.members(), ElementsAre(5, -3, INT32_MAX, INT32_MIN, 0));
    EXPECT_THAT(set.membersByPointer(), ElementsAre(5, -3, INT32_MAX, INT32_MIN, 0));
    EXPECT_THAT(set.members(1), ElementsAre(INT32_MIN, -3, 0, 5, INT32_MAX));
    EXPECT_THAT(set.members(2), ElementsAre(INT32_MAX, 5, 0, -3, INT32_MIN));
}

using IntSetFailures = vx::test::StartedToolkit;

TEST_F(IntSetFailures, refusesListsOfOtherElements)
{
    Set set(newList(array, 8));
    int32_t added = -1;
    VxList *index = nullptr;
    VxListIter walk;
    EXPECT_EQ(VxIntSetAdd(&set.set, 1, &added), 1u);
    EXPECT_EQ(VxErrCnt(), 1);
    EXPECT_EQ(added, 0);
    EXPECT_EQ(VxIntSetContains(&set.set, 0), 0);
    EXPECT_EQ(VxIntSetDelVal(&set.set, 0), 1u);
    EXPECT_EQ(VxIntSetKeyList(&set.set, &index), 1u);
    EXPECT_EQ(VxIntSetOptimize(&set.set), 1u);
    EXPECT_EQ(VxIntSetItrInit(&set.set, 0, &walk), 1u);
    EXPECT_EQ(VxIntSetBegin(&set.set, &walk), nullptr);
    EXPECT_EQ(set.set.values->count, 0);
    EXPECT_EQ(set.set.index, nullptr);
}

TEST_F(IntSetFailures, refusedMemoryAddsToBothListsOrToNeither)
{
    vx::test::refusingEachAllocation([] {
        VxList *values = nullptr;
        VxIntSet *set = nullptr;
        bool made = VxListMk(array, sizeof(int32_t), 2, 3, nullptr, &values) == 0;
        made = made && VxIntSetMk(values, &set) == 0;
        int32_t expected[24];
        int32_t count = 0;
        uint32_t failures = 0;
        for (int32_t value = 0; made && value < 24; ++value) {
            int32_t added = -1;
            bool indexed = set->index != nullptr;
            uint32_t failed = VxIntSetAdd(set, value, &added);
            EXPECT_EQ(added, failed == 0);
            failures += failed;
            if (failed == 0)
                expected[count++] = value;
            else if (!indexed)
                VxIntSetPurge(set); // an index half built stays until it is purged
            bool isThere = VxIntSetContains(set, value);
            EXPECT_EQ(isThere, failed == 0);
        }
        if (made) {
            EXPECT_LE(failures, 1u);
            EXPECT_EQ(set->index->count, values->count);
            EXPECT_EQ(values->count, count);
            for (int32_t i = 0; i < values->count; ++i)
                EXPECT_EQ(VxListIndexOf(values, &expected[i], 0), i);
        }
        VxIntSetDel(&set);
        EXPECT_EQ(set, nullptr);
        VxListDel(&values); // its owner's
    });
}
