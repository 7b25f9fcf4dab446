// Linked nodes, binary trees, queues and stacks.

#include "vx/queue.h"

#include <array>
#include <cstring>
#include <deque>
#include <numeric>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/session/started_toolkit.h"
#include "tests/support/faults.h"
#include "vx/list.h"
#include "vx/mem.h"

namespace vx::test {

namespace {

constexpr int32_t linked = 1;
constexpr int32_t intBytes = sizeof(int32_t);

int32_t valueAt(const void *element)
{
    int32_t value = 0;
    std::memcpy(&value, element, sizeof value);
    return value;
}

/** New elements stand behind equal ones. */
int32_t behindEqual(const void *a, const void *b)
{
    return valueAt(a) >= valueAt(b) ? 0 : 1;
}

int32_t rejectEqual(const void *a, const void *b)
{
    return valueAt(a) == valueAt(b) ? 2 : behindEqual(a, b);
}

std::vector<int32_t> valuesOf(VxList *list)
{
    std::vector<int32_t> values;
    VxListIter iter;
    VxListItrInit2(list, 0, &iter);
    for (int32_t value = 0; VxListItr(&iter, &value) == 0;)
        values.push_back(value);
    return values;
}

VxList *linkedList(const std::vector<int32_t> &values)
{
    VxList *list = nullptr;
    VxListMk(linked, intBytes, 0, 0, nullptr, &list);
    for (int32_t value : values)
        VxLnkLstInsNode(list, list->count, &value);
    return list;
}

std::vector<int32_t> sortedThroughTree(const std::vector<int32_t> &values, VxCmpFn compare)
{
    VxBintree *tree = nullptr;
    VxList *list = nullptr;
    VxBintreeMk(&tree);
    for (int32_t value : values) {
        VxLnkNode *node = nullptr;
        EXPECT_EQ(VxBintreeIns(tree, compare, intBytes, &value, &node), 0u);
        if (valueAt(node->element) != value)
            ADD_FAILURE() << "another element than " << value;
    }
    EXPECT_EQ(VxBintreeToList(intBytes, &tree, &list), 0u);
    EXPECT_EQ(tree, nullptr);
    std::vector<int32_t> sorted = valuesOf(list);
    VxListDel(&list);
    return sorted;
}

}

TEST(LinkedNodes, ElementsTakenOutAreTheCallersBlocks)
{
    VxList *list = linkedList({1, 2, 3});
    for (int32_t expected : {1, 2, 3}) {
        void *element = nullptr;
        ASSERT_EQ(VxLnkLstDelNode(list, 0, &element), 0u);
        EXPECT_EQ(valueAt(element), expected);
        ASSERT_EQ(VxMemResize(100, &element), 0u);
        EXPECT_EQ(valueAt(element), expected);
        VxMemFree(&element);
    }
    EXPECT_EQ(list->data, nullptr);
    EXPECT_EQ(list->count, 0);
    void *element = nullptr;
    EXPECT_EQ(VxLnkLstDelNode(list, 0, &element), 1u);
    VxListDel(&list);
}

TEST(LinkedNodes, AreInsertedBesideTheCurrentNodeOfAWalk)
{
    VxList *list = linkedList({1, 2, 3});
    VxListIter iter;
    int32_t value = 0;
    for (int32_t outside : {-1, 4})
        EXPECT_EQ(VxLnkLstInsNode(list, outside, &value), 1u);
    VxListItrInit2(list, 0, &iter);
    int32_t added = 10;
    EXPECT_EQ(VxLnkLstLocIns(list, &iter, 0, &added), 1u) << "without a current node";
    VxListItr(&iter, &value);
    EXPECT_EQ(VxLnkLstLocIns(list, &iter, 1, &added), 0u);
    added = 11;
    EXPECT_EQ(VxLnkLstLocIns(list, &iter, 0, &added), 0u);
    EXPECT_EQ(valuesOf(list), (std::vector<int32_t>{10, 1, 11, 2, 3}));
    VxListDel(&list);
}

TEST(LinkedNodes, WalksGoBothWaysOneStepAtATime)
{
    VxList *list = linkedList({1, 2, 3});
    VxListIter iter{};
    void *element = nullptr;
    for (int32_t expected : {1, 2, 3}) {
        ASSERT_EQ(VxLstGetNxtPtr(list, &iter, &element), 0u);
        EXPECT_EQ(valueAt(element), expected);
        EXPECT_EQ(iter.index, expected - 1);
    }
    EXPECT_EQ(VxLstGetNxtPtr(list, &iter, &element), 1u);
    for (int32_t expected : {2, 1}) {
        ASSERT_EQ(VxListGetPrvPtr(list, &iter, &element), 0u);
        EXPECT_EQ(valueAt(element), expected);
    }
    EXPECT_EQ(VxListGetPrvPtr(list, &iter, &element), 1u);
    VxListDel(&list);
}

TEST(Tree, GivesItsElementsInOrderAndEqualOnesInTheOrderTheyCame)
{
    EXPECT_EQ(sortedThroughTree({5, 1, 3}, behindEqual), (std::vector<int32_t>{1, 3, 5}));
    EXPECT_EQ(sortedThroughTree({5, 1, 5, 3, 1}, behindEqual), (std::vector<int32_t>{1, 1, 3, 5, 5}));
}

TEST(Tree, TakesAMillionElementsThatComeInOrder)
{
    std::vector<int32_t> ordered(1'000'000);
    std::iota(ordered.begin(), ordered.end(), 1);
    EXPECT_EQ(sortedThroughTree(ordered, behindEqual), ordered);
}

TEST(Tree, IsDeletedAtAnyDepth)
{
    // Put together by hand: as deep as it is large.
    VxBintree *tree = nullptr;
    VxBintreeMk(&tree);
    VxBintree *last = tree;
    for (int i = 0; i < 1'000'000; ++i) {
        VxBintree *next = nullptr;
        VxBintreeMk(&next);
        (i % 2 ? last->left : last->right) = next;
        last = next;
    }
    EXPECT_EQ(VxBintreeDel(&tree), 0u);
    EXPECT_EQ(tree, nullptr);
}

TEST(Tree, ARejectedElementIsInTheListButNotInTheTree)
{
    VxList *list = nullptr;
    ASSERT_EQ(VxListMk(4, intBytes, 0, 0, rejectEqual, &list), 0u);
    for (int32_t value : {7, 3, 7})
        EXPECT_EQ(VxListSet(list, 0, &value), 0u);
    EXPECT_EQ(valuesOf(list), (std::vector<int32_t>{7, 3, 7}));
    auto tree = static_cast<VxBintree *>(list->data);
    EXPECT_EQ(tree->right, nullptr);
    EXPECT_NE(tree->left, nullptr);
    VxListDel(&list);
}

TEST(Queue, AgreesWithADequeOfBytesOfEitherSize)
{
    for (int32_t bytes : {1, 4, 5, 64}) {
        const uint32_t seed = 77;
        SCOPED_TRACE(testing::Message() << "seed " << seed << ", items of " << bytes);
        std::mt19937 random(seed);
        auto size = static_cast<size_t>(bytes);
        std::deque<std::string> model;
        VxQueue *queue = nullptr;
        ASSERT_EQ(VxQueueMk(bytes, &queue), 0u);
        for (int i = 0; i < 3000; ++i) {
            std::string item(size, static_cast<char>('a' + random() % 26));
            std::string out(size + 1, '?');
            switch (random() % 5) {
            case 0:
            case 1:
                ASSERT_EQ(VxQueuePush(queue, item.data()), 0u);
                model.push_back(item);
                break;
            case 2:
                ASSERT_EQ(VxStackPush(queue, item.data()), 0u);
                model.push_front(item);
                break;
            case 3:
                ASSERT_EQ((i % 2 ? VxQueuePop : VxStackPop)(queue, out.data(), bytes), model.empty());
                EXPECT_EQ(out, model.empty() ? std::string(size + 1, '?') : model.front() + '?');
                if (!model.empty())
                    model.pop_front();
                break;
            default:
                ASSERT_EQ(VxQueueShorten(queue, out.data(), 1), model.empty());
                EXPECT_EQ(out[0], model.empty() ? '?' : model.back()[0]);
                EXPECT_EQ(out[1], '?') << "more than the buffer's size was written";
                if (!model.empty())
                    model.pop_back();
            }
        }
        VxQueueDel(&queue);
        EXPECT_EQ(queue, nullptr);
    }
}

class RefusedNodes : public StartedToolkit {};

TEST_F(RefusedNodes, QueuesAndTreesAreAsBefore)
{
    std::array<char, 64> item{};
    uint32_t failure = 2; // without a record; then 1, without items
    refusingEachAllocation([&item, &failure] {
        VxQueue *queue = nullptr;
        uint32_t made = VxQueueMk(64, &queue);
        if (made != 0) {
            EXPECT_EQ(made, std::exchange(failure, 1u));
            EXPECT_EQ(queue, nullptr);
            return;
        }
        int pushed = 0;
        for (int i = 0; i < 20; ++i)
            pushed += VxQueuePush(queue, item.data()) == 0;
        EXPECT_GE(pushed, 19);
        for (; pushed > 0; --pushed)
            EXPECT_EQ(VxQueuePop(queue, item.data(), 64), 0u);
        EXPECT_EQ(VxQueuePop(queue, item.data(), 64), 1u);
        VxQueueDel(&queue);
        VxErrClear();
    });
    refusingEachAllocation([] {
        VxBintree *tree = nullptr;
        if (VxBintreeMk(&tree) != 0)
            return;
        int32_t inserted = 0;
        VxLnkNode *node = nullptr;
        for (int32_t value : {5, 1, 3, 2})
            inserted += VxBintreeIns(tree, behindEqual, intBytes, &value, &node) == 0;
        VxList *list = nullptr;
        if (VxBintreeToList(intBytes, &tree, &list) != 0) {
            EXPECT_NE(tree, nullptr);
            VxBintreeDel(&tree);
            return;
        }
        EXPECT_EQ(list->count, inserted);
        VxListDel(&list);
        VxErrClear();
    });
}

}
