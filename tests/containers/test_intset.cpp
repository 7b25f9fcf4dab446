#include <random>

#include <gmock/gmock.h>

#include "tests/session/started_toolkit.h"
#include "tests/support/faults.h"
#include "vx/intset.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Values = std::vector<int32_t>;

constexpr int32_t array = 2;

/** A set and its value list. */
struct Set {
    VxIntSet set{};

    /** Of a layout for its value list, or without one. */
    explicit Set(int32_t layout = -1)
    {
        VxList *values = nullptr;
        EXPECT_TRUE(layout < 0 || VxListMk(layout, sizeof(int32_t), 4, 4, nullptr, &values) == 0);
        EXPECT_EQ(VxIntSetInit(values, &set), 0u);
    }
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
};

}

TEST(IntSet, agreesWithAVectorThroughGrowthPurgesAndRemovals)
{
    std::mt19937 random(11);
    for (int32_t layout : {-1, 1, array, 3}) {
        SCOPED_TRACE(testing::Message() << "value list of layout " << layout);
        Set set(layout);
        Values model;
        for (int step = 0; step < 4000 && !testing::Test::HasFailure(); ++step) {
            int32_t range = step / 1000 % 2 ? 3000 : 12;
            int32_t value = static_cast<int32_t>(random()) % range;
            bool isKnown = std::ranges::count(model, value);
            EXPECT_EQ(set.has(value), isKnown);
            const auto kind = random() % (range == 12 ? 6u : 16u);
            if (kind <= 1) {
                EXPECT_EQ(VxIntSetDelVal(&set.set, value), !isKnown);
                std::erase(model, value);
            } else if (kind <= 3) {
                EXPECT_EQ((kind == 2 && layout >= 0 ? VxIntSetPurge : VxIntSetOptimize)(&set.set), 0u);
            } else {
                EXPECT_EQ(set.add(value), !isKnown);
                model.insert(model.end(), !isKnown, value);
            }
            if (step % 997 == 0) {
                EXPECT_EQ(VxIntSetReset(&set.set), 0u);
                model.clear();
            }
            EXPECT_EQ(VxIntSetEmpty(&set.set), model.empty());
            if (step % 8 == 0) {
                EXPECT_EQ(set.members(), model);
            }
        }
    }
}

TEST(IntSet, buildsItsIndexForTheEighthAddition)
{
    Set set(array);
    for (int32_t value = 0; value < 7; ++value)
        EXPECT_TRUE(set.add(value));
    EXPECT_EQ(set.set.index, nullptr);
    EXPECT_FALSE(set.add(3));
    EXPECT_NE(set.set.index, nullptr) << "a value that is there counts too";
    for (bool seven : {true, false}) {
        VxIntSetPurge(&set.set);
        EXPECT_EQ(VxIntSetOptimize(&set.set), 0u);
        EXPECT_EQ(set.set.index != nullptr, seven) << "six are not worth it";
        VxIntSetDelVal(&set.set, 6);
    }
}

TEST(IntSet, withoutAValueListWalksItsKeys)
{
    Set set;
    EXPECT_THAT(set.members(), IsEmpty());
    const Values values{5, -3, INT32_MAX, INT32_MIN, 0};
    for (int32_t value : values)
        EXPECT_TRUE(set.add(value));
    VxListIter walk;
    Values byPointer;
    for (const int32_t *at = VxIntSetBegin(&set.set, &walk); at; at = VxIntSetIncr(&walk))
        byPointer.push_back(*at);
    EXPECT_EQ(byPointer, values);
    EXPECT_THAT(set.members(1), ElementsAre(INT32_MIN, -3, 0, 5, INT32_MAX));
    EXPECT_THAT(set.members(2), ElementsAre(INT32_MAX, 5, 0, -3, INT32_MIN));
}

using IntSetFailures = vx::test::StartedToolkit;

TEST_F(IntSetFailures, refusedMemoryAddsToBothListsOrToNeither)
{
    vx::test::refusingEachAllocation([] {
        VxList *values = nullptr;
        VxIntSet *set = nullptr;
        bool made = VxListMk(array, sizeof(int32_t), 2, 3, nullptr, &values) == 0;
        made = made && VxIntSetMk(values, &set) == 0;
        int32_t refused = 0;
        for (int32_t value = 0; made && value < 24; ++value) {
            int32_t added = -1;
            bool indexed = set->index != nullptr;
            uint32_t failed = VxIntSetAdd(set, value, &added);
            EXPECT_EQ(added, failed == 0);
            refused += failed != 0;
            if (failed && !indexed)
                VxIntSetPurge(set); // an index half built stays until it is purged
            EXPECT_EQ(VxIntSetContains(set, value), failed == 0);
        }
        EXPECT_TRUE(!made || (set->index->count == 24 - refused && values->count == 24 - refused));
        EXPECT_LE(refused, 1);
        VxIntSetDel(&set);
        EXPECT_EQ(set, nullptr);
        VxListDel(&values); // its owner's
    });
}
