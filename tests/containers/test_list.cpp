// What single lists do at their limits.

#include "vx/list.h"

#include <algorithm>
#include <map>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/session/started_toolkit.h"
#include "platform/os/fault.h"
#include "vx/mem.h"

namespace vx::test {

namespace {

constexpr int32_t keyed = 0;
constexpr int32_t array = 2;
constexpr int32_t intBytes = sizeof(int32_t);

class List : public StartedToolkit {
protected:
    void make(int32_t layout, int32_t capacity = 0, int32_t increment = 1)
    {
        ASSERT_EQ(VxListMk(layout, intBytes, capacity, increment, nullptr, &list_), 0u);
    }

    void TearDown() override
    {
        VxListDel(&list_);
        StartedToolkit::TearDown();
    }

    void store(int32_t index, int32_t value)
    {
        ASSERT_EQ(VxListSet(list_, index, &value), 0u) << "at " << index;
    }

    VxList *list_ = nullptr;
};

int32_t ascending(const void *a, const void *b)
{
    return *static_cast<const int32_t *>(a) - *static_cast<const int32_t *>(b);
}

}

TEST_F(List, OfElementsWithoutSizeOrTooManyIsReported)
{
    void *made = nullptr;
    EXPECT_EQ(VxListMk(array, 0, 1, 1, nullptr, &list_), 1u);
    EXPECT_TRUE(reported(3));
    EXPECT_EQ(VxListMk(6, 4, 1, 1, nullptr, &list_), 1u) << "no such layout";
    os::setTestClock(2'000'000'000'000'000); // later: a repeat would be dropped
    EXPECT_EQ(VxMkArr(array, 0, 1, 1, nullptr, &made), 1u);
    EXPECT_TRUE(reported(3));
    EXPECT_EQ(VxMkArr(keyed, 4, 1, 1, nullptr, &made), 1u);
    EXPECT_EQ(VxErrCnt(), 0);
    EXPECT_EQ(VxMkArr(array, 1 << 20, 1 << 12, 1, nullptr, &made), 1u) << "no block has that size";
    EXPECT_TRUE(reported(1));
}

TEST_F(List, OfAllIntegersIsWalkedInOrderAtOnce)
{
    make(keyed);
    for (int32_t key : {INT32_MAX, 5, INT32_MIN})
        store(key, key);
    VxListIter iter;
    int32_t value = 0;
    VxListItrInit2(list_, 1, &iter);
    for (int32_t key : {INT32_MIN, 5, INT32_MAX}) {
        ASSERT_EQ(VxListItr(&iter, &value), 0);
        EXPECT_EQ(value, key);
    }
    EXPECT_EQ(VxListItr(&iter, &value), -1);
    int32_t index = 0;
    value = 1;
    EXPECT_EQ(VxListSetUnique(list_, &value, &index), 1u) << "behind the highest key";
    EXPECT_EQ(index, -1);
}

// The visits are those of a walk that steps by one key and skips the absent,
// up to the bound that stood when it began.
TEST_F(List, KeysThatComeAndGoDuringAWalkAreVisitedAsIfSteppedByOne)
{
    const uint32_t seed = 4711;
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    make(keyed);
    std::map<int32_t, int32_t> model;
    auto change = [&] {
        auto key = static_cast<int32_t>(random() % 2000) * 1000 - 700'000;
        if (random() % 2) {
            store(key, key);
            model[key] = key;
        } else {
            EXPECT_EQ(VxListDelElem(list_, key, key), model.erase(key) ? 0u : 1u);
        }
    };
    for (int round = 0; round < 120; ++round) {
        for (int i = 0; i < 300; ++i)
            change();
        bool up = random() % 2;
        VxListIter iter;
        VxListItrInit2(list_, up ? 1 : 2, &iter);
        int64_t at = up ? INT64_MIN : list_->capacity + int64_t{1};
        int64_t bound = up ? list_->capacity : model.begin()->first;
        const int changes = round % 5 == 0 ? 100 : round % 3;
        for (;;) {
            int32_t value = 0;
            int32_t result = VxListItr(&iter, &value);
            auto next = model.end();
            if (up)
                next = at == INT64_MIN ? model.begin() : model.upper_bound(static_cast<int32_t>(at));
            else if (auto above = model.lower_bound(static_cast<int32_t>(at)); above != model.begin())
                next = std::prev(above);
            bool over = next == model.end() || (up ? next->first > bound : next->first < bound);
            ASSERT_EQ(result, over ? -1 : 0);
            if (over)
                break;
            ASSERT_EQ(value, next->first);
            at = next->first;
            for (int i = 0; i < changes && round % 4 == 0; ++i)
                change();
        }
    }
}

TEST_F(List, ThatGrowsInOneBlockIsNotCopiedForEachIncrement)
{
    int32_t page = std::exchange(VgPageSize, 0); // before the toolkit starts there are no pages
    make(array, 1, 10);
    fault::refuse(fault::Kind::allocation, 0);
    for (int32_t i = 0; i < 50'000; ++i)
        store(i, i);
    EXPECT_LT(fault::calls(fault::Kind::allocation), 50);
    VgPageSize = page;
    EXPECT_EQ(list_->capacity, 50'001);
    EXPECT_TRUE(VxListIsArray(list_));
    int32_t value = 1;
    EXPECT_EQ(VxListGet(list_, 50'000, &value), 0u);
    EXPECT_EQ(value, 0) << "slots behind the count are zero";
    EXPECT_EQ(VxListGet(list_, 50'001, &value), 1u) << "room behind the capacity is nobody's";
    EXPECT_EQ(VxResizeArr(list_, 100'000), 0u);
    EXPECT_EQ(list_->capacity, 150'001);
    EXPECT_TRUE(VxListIsArray(list_)) << "with pages, too";
    EXPECT_EQ(VxListConvert(keyed, list_), 0u);
    EXPECT_EQ(VxResizeArr(list_, 1), 1u);
}

TEST_F(List, OfPointersKeepsItsElementsWhereTheyAre)
{
    make(3, 2, 2);
    for (int32_t i = 0; i < 10; ++i)
        store(i, i);
    void *seventh = nullptr;
    VxListGetPtr(list_, 7, &seventh);
    int32_t value = 100;
    VxListIns(list_, 0, &value);
    VxListDelElem(list_, 2, 5);
    VxListRvrs(list_);
    void *moved = nullptr;
    VxListGetPtr(list_, VxListIndexOf(list_, seventh, 0), &moved);
    EXPECT_EQ(moved, seventh);
}

TEST_F(List, OfListsIsDeletedWithThemOnlyWhenItsElementsArePointers)
{
    VxList *outer = nullptr;
    VxListMk(array, sizeof(VxList *), 2, 1, nullptr, &outer);
    VxList *inner = nullptr;
    VxListMk(1, intBytes, 0, 0, nullptr, &inner);
    int32_t value = 1;
    VxListSet(inner, 0, &value);
    VxListSet(outer, 0, &inner);
    inner = nullptr;
    VxListSet(outer, 1, &inner);
    EXPECT_EQ(VxListOfListDel(&outer), 0u);
    EXPECT_EQ(outer, nullptr);
    make(array);
    EXPECT_EQ(VxListOfListDel(&list_), 1u);
    EXPECT_NE(list_, nullptr);
    EXPECT_EQ(VxErrCnt(), 1);
}

TEST_F(List, SearchesHintAtANeighbour)
{
    make(array);
    for (int32_t value : {30, 10, 20})
        store(list_->count, value);
    int32_t *order = nullptr;
    ASSERT_EQ(VxListSort2(list_, ascending, &order), 0u);
    struct Search {
        int32_t key, found, index;
    };
    for (const Search &wanted : {Search{10, 1, 1}, Search{30, 1, 0}, Search{35, 0, 0}, Search{25, 0, 2}}) {
        int32_t found = -1;
        int32_t index = -2;
        ASSERT_EQ(VxListSrch(list_, order, &wanted.key, ascending, &found, &index), 0u);
        EXPECT_EQ(found, wanted.found) << wanted.key;
        EXPECT_EQ(index, wanted.index) << wanted.key;
    }
    void *block = order;
    VxMemFree(&block);
    VxListDownsize(list_, 1);
    const int32_t key = 1, only = 0;
    for (const int32_t *one : {&only, static_cast<const int32_t *>(nullptr)}) {
        int32_t found = -1;
        int32_t index = -2;
        VxListSrch(list_, one, &key, ascending, &found, &index);
        EXPECT_EQ(index, one ? 0 : -1) << "of one element";
    }
}

// Every order of few values, and one that lies: it must end, and inside.
TEST_F(List, IsSortedWhateverItsOrderWas)
{
    std::mt19937 random(9);
    auto lie = [](const void *, const void *) -> int32_t { return -1; };
    for (int32_t n : {2, 6, 7, 64, 130, 5000})
        for (int pattern = 0; pattern < 5; ++pattern) {
            std::vector<int32_t> values(static_cast<size_t>(n));
            for (int32_t i = 0; i < n; ++i) {
                int32_t shapes[] = {i, -i, i % 3, static_cast<int32_t>(random() % 1000), i ^ 5};
                values[static_cast<size_t>(i)] = shapes[pattern];
            }
            auto expected = values;
            std::sort(expected.begin(), expected.end());
            VxList view;
            VxListWrapArr(intBytes, n, n, values.data(), &view);
            ASSERT_EQ(VxListSort(&view, ascending), 0u);
            ASSERT_EQ(values, expected) << n << " elements, pattern " << pattern;
            VxListSort(&view, lie);
            std::sort(values.begin(), values.end());
            ASSERT_EQ(values, expected);
        }
}

TEST_F(List, OfKeysSaysWhereItsWalksBeginAndBecomesAPlainArray)
{
    make(keyed);
    for (int32_t key : {4, -3, 9})
        store(key, key);
    VxListIterOld start;
    VxListItrInit(list_, 1, &start);
    EXPECT_EQ(start.index, -3);
    VxListItrInit(list_, 2, &start);
    EXPECT_EQ(start.index, 9);
    int32_t count = 0;
    void *block = nullptr;
    ASSERT_EQ(VxListCnvrtArr(intBytes, list_, &count, &block), 0u);
    EXPECT_EQ(list_->count, 0);
    auto first = static_cast<int32_t *>(block);
    EXPECT_EQ(std::vector<int32_t>(first, first + count), (std::vector<int32_t>{4, -3, 9}));
    VxMemFree(&block);
    store(1, 1);
    EXPECT_EQ(list_->count, 1) << "the list can be used again";
}

}
