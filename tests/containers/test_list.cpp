// What single lists do at their limits.

#include <algorithm>
#include <random>
#include <set>

#include "containers/records.h"
#include "platform/os/fault.h"
#include "tests/containers/list_model.h"
#include "tests/session/started_toolkit.h"

namespace vx::test {

namespace {

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

TEST_F(List, OfAllIntegersIsWalkedInOrderAtOnce)
{
    make(keyed);
    for (int32_t key : {INT32_MAX, 5, INT32_MIN})
        store(key, key);
    VxListIter iter;
    int32_t value = 0, index = 0;
    VxListItrInit2(list_, 1, &iter);
    for (int32_t key : {INT32_MIN, 5, INT32_MAX})
        EXPECT_TRUE(VxListItr(&iter, &value) == 0 && value == key) << value << " instead of " << key;
    EXPECT_EQ(VxListItr(&iter, &value), -1);
    value = 1;
    EXPECT_EQ(VxListSetUnique(list_, &value, &index), 1u) << "behind the highest key";
    EXPECT_EQ(index, -1);
}

TEST_F(List, OfKeysKeepsElementsOfAnySize)
{
    for (int32_t size : {1, 3, 4, 5, 48, 70'000}) {
        VxList *list = nullptr;
        ASSERT_EQ(VxListMk(keyed, size, 0, 1, nullptr, &list), 0u);
        std::vector<char> element(static_cast<size_t>(size));
        for (int32_t key = 0; key < 100; ++key) {
            std::fill(element.begin(), element.end(), static_cast<char>(key));
            EXPECT_EQ(VxListSet(list, key * 17, element.data()), 0u);
        }
        VxListIter iter;
        VxListItrInit2(list, 0, &iter);
        for (char key = 0; key < 100; ++key) {
            ASSERT_EQ(VxListItr(&iter, element.data()), 0);
            EXPECT_TRUE(iter.index == key * 17 && std::ranges::count(element, key) == size) << size;
        }
        VxListDel(&list);
    }
}

// The visits are those of a walk that steps by one key and skips the absent,
// up to the bound that stood when it began.
TEST_F(List, KeysThatComeAndGoDuringAWalkAreVisitedAsIfSteppedByOne)
{
    std::mt19937 random(4711);
    make(keyed);
    std::set<int64_t> model;
    auto change = [&] {
        auto key = static_cast<int32_t>(random() % 2000) * 1000 - 700'000;
        if (random() % 2) {
            store(key, key);
            model.insert(key);
        } else {
            EXPECT_EQ(VxListDelElem(list_, key, key), model.erase(key) ? 0u : 1u);
        }
    };
    for (int round = 0; round < 120; ++round) {
        for (int i = 0; i < 300; ++i)
            change();
        const bool up = random() % 2;
        VxListIter iter;
        VxListItrInit2(list_, up ? 1 : 2, &iter);
        const int64_t last = up ? list_->capacity : *model.begin();
        const int changes = round % 4 == 0 ? (round % 5 == 0 ? 100 : 1) : 0;
        int32_t value = 0;
        for (int64_t at = up ? INT64_MIN : INT64_MAX;; at = value) {
            auto next = up ? model.upper_bound(at) : model.lower_bound(at);
            if (!up)
                next = next == model.begin() ? model.end() : std::prev(next);
            const bool over = next == model.end() || (up ? *next > last : *next < last);
            ASSERT_EQ(VxListItr(&iter, &value), over ? -1 : 0);
            if (over)
                break;
            ASSERT_EQ(value, *next);
            for (int i = 0; i < changes; ++i)
                change();
        }
    }
}

TEST_F(List, IsAppendedToInPlaceAfterAnyChangeOfItsPages)
{
    int32_t page =
        std::exchange(VgPageSize, 48); // 6 pages of 12 elements at the first level, 36 at the second
    make(array, 10, 5);
    std::vector<int32_t> model;
    std::mt19937 random(3);
    for (int32_t i = 0; i < 20'000 && !HasFailure(); ++i) {
        const auto n = static_cast<int32_t>(model.size());
        auto below = [&](int32_t limit) {
            return static_cast<int32_t>(random() % static_cast<unsigned>(limit));
        };
        const int32_t kept = n > 0 ? below(n) : 0;
        if (n > 300 || below(40) == 0) {
            EXPECT_EQ(VxListDownsize(list_, kept), 0u);
            model.resize(static_cast<size_t>(kept));
        } else if (n > 0 && below(20) == 0) {
            EXPECT_EQ(VxListDelElem(list_, kept, kept), 0u);
            model.erase(model.begin() + kept);
        } else if (below(10) == 0) {
            EXPECT_EQ(VxListIns(list_, kept, &i), 0u);
            model.insert(model.begin() + kept, i);
        } else {
            EXPECT_EQ(containers::append(list_, i), 0u);
            model.push_back(i);
        }
        ASSERT_EQ(list_->count, static_cast<int32_t>(model.size()));
        for (int32_t at = 0; at < list_->count; ++at)
            ASSERT_EQ(*containers::recordAt<int32_t>(list_, at), model[static_cast<size_t>(at)]);
    }
    VgPageSize = page;
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
    int32_t value = 1;
    EXPECT_EQ(VxListGet(list_, 50'001, &value), 1u) << "room behind the capacity is nobody's";
    EXPECT_EQ(VxResizeArr(list_, 100'000), 0u);
    EXPECT_EQ(list_->capacity, 150'001);
    EXPECT_TRUE(VxListIsArray(list_)) << "with pages, too";
}

TEST_F(List, OfListsIsDeletedWithThemOnlyWhenItsElementsArePointers)
{
    VxList *outer = nullptr;
    VxListMk(array, sizeof(VxList *), 2, 1, nullptr, &outer);
    make(1);
    store(0, 1);
    VxListSet(outer, 0, &list_);
    list_ = nullptr;
    VxListSet(outer, 1, &list_);
    EXPECT_EQ(VxListOfListDel(&outer), 0u);
    make(array);
    EXPECT_EQ(VxListOfListDel(&list_), 1u);
    EXPECT_NE(list_, nullptr);
}

TEST_F(List, SearchesHintAtANeighbour)
{
    make(array);
    for (int32_t value : {30, 10, 20})
        store(list_->count, value);
    const int32_t order[] = {1, 2, 0};
    for (auto [key, isThere, where] : {std::tuple{10, 1, 1}, {30, 1, 0}, {35, 0, 0}, {25, 0, 2}}) {
        int32_t found = -1, index = -2;
        ASSERT_EQ(VxListSrch(list_, order, &key, ascending, &found, &index), 0u);
        EXPECT_EQ(std::pair(found, index), std::pair(isThere, where)) << key;
    }
}

// Every order of few values, and one that lies: it must end, and inside.
TEST_F(List, IsSortedWhateverItsOrderWas)
{
    std::mt19937 random(9);
    auto lie = [](const void *, const void *) -> int32_t { return -1; };
    for (int32_t n : {2, 6, 7, 64, 130, 5000})
        for (size_t pattern = 0; pattern < 5; ++pattern) {
            std::vector<int32_t> values;
            for (int32_t i = 0; i < n; ++i)
                values.push_back(std::array{i, -i, i % 3, int32_t(random() % 1000), i ^ 5}[pattern]);
            auto expected = values;
            std::ranges::sort(expected);
            VxList view;
            VxListWrapArr(intBytes, n, n, values.data(), &view);
            ASSERT_EQ(VxListSort(&view, ascending), 0u);
            ASSERT_EQ(values, expected) << n << " elements, pattern " << pattern;
            VxListSort(&view, lie);
            std::ranges::sort(values);
            ASSERT_EQ(values, expected);
        }
}

}
