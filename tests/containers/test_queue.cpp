// Linked nodes, binary trees, queues and stacks.

#include <deque>
#include <numeric>
#include <random>

#include "tests/session/started_toolkit.h"
#include "tests/support/faults.h"
#include "vx/list.h"
#include "vx/mem.h"
#include "vx/queue.h"

namespace vx::test {

namespace {

constexpr int32_t intBytes = sizeof(int32_t);

int32_t valueAt(const void *element)
{
    return *static_cast<const int32_t *>(element);
}

/** New elements stand behind equal ones. */
int32_t behindEqual(const void *a, const void *b)
{
    return valueAt(a) >= valueAt(b) ? 0 : 1;
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

std::vector<int32_t> sortedThroughTree(const std::vector<int32_t> &values)
{
    VxBintree *tree = nullptr;
    VxList *list = nullptr;
    VxBintreeMk(&tree);
    for (int32_t value : values) {
        VxLnkNode *node = nullptr;
        EXPECT_EQ(VxBintreeIns(tree, behindEqual, intBytes, &value, &node), 0u);
    }
    EXPECT_EQ(VxBintreeToList(intBytes, &tree, &list), 0u);
    std::vector<int32_t> sorted = valuesOf(list);
    VxListDel(&list);
    return sorted;
}

}

TEST(LinkedNodes, AreInsertedBesideTheCurrentNodeOfAWalkThatGoesBothWays)
{
    VxList *list = nullptr;
    VxListMk(1, intBytes, 0, 0, nullptr, &list);
    for (int32_t value : {1, 2, 3})
        VxLnkLstInsNode(list, list->count, &value);
    int32_t before = 10, behind = 11;
    void *element = nullptr;
    VxListIter iter;
    VxListItrInit2(list, 0, &iter);
    EXPECT_EQ(VxLnkLstLocIns(list, &iter, 0, &before), 1u) << "without a current node";
    VxLstGetNxtPtr(list, &iter, &element);
    EXPECT_EQ(VxLnkLstLocIns(list, &iter, 1, &before), 0u);
    EXPECT_EQ(VxLnkLstLocIns(list, &iter, 0, &behind), 0u);
    EXPECT_EQ(valuesOf(list), (std::vector<int32_t>{10, 1, 11, 2, 3}));
    VxLstGetNxtPtr(list, &iter, &element);
    EXPECT_EQ(valueAt(element), 11);
    VxListGetPrvPtr(list, &iter, &element);
    EXPECT_EQ(valueAt(element), 1);

    ASSERT_EQ(VxLnkLstDelNode(list, 0, &element), 0u);
    EXPECT_EQ(valueAt(element), 10);
    EXPECT_EQ(VxMemResize(100, &element), 0u) << "what is taken out is the caller's block";
    VxMemFree(&element);
    VxListDel(&list);
}

TEST(Tree, GivesItsElementsInOrderEvenAMillionThatComeInOrder)
{
    EXPECT_EQ(sortedThroughTree({5, 1, 5, 3, 1}), (std::vector<int32_t>{1, 1, 3, 5, 5}));
    std::vector<int32_t> ordered(1'000'000);
    std::iota(ordered.begin(), ordered.end(), 1);
    EXPECT_EQ(sortedThroughTree(ordered), ordered);
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

TEST(Queue, AgreesWithADequeOfBytesOfEitherSize)
{
    std::mt19937 random(77);
    for (int32_t bytes : {1, 4, 5, 64}) {
        SCOPED_TRACE(bytes);
        auto size = static_cast<size_t>(bytes);
        std::deque<std::string> model;
        VxQueue *queue = nullptr;
        ASSERT_EQ(VxQueueMk(bytes, &queue), 0u);
        for (int i = 0; i < 3000; ++i) {
            std::string item(size, static_cast<char>('a' + random() % 26));
            std::string out(size + 1, '?');
            const uint32_t empty = model.empty();
            const auto kind = random() % 5;
            if (kind <= 2) {
                ASSERT_EQ((kind == 2 ? VxStackPush : VxQueuePush)(queue, item.data()), 0u);
                model.insert(kind == 2 ? model.begin() : model.end(), item);
            } else if (kind == 3) {
                ASSERT_EQ((i % 2 ? VxQueuePop : VxStackPop)(queue, out.data(), bytes), empty);
                EXPECT_EQ(out, empty ? std::string(size + 1, '?') : model.front() + '?');
                model.erase(model.begin(), model.begin() + !empty);
            } else {
                ASSERT_EQ(VxQueueShorten(queue, out.data(), 1), empty);
                EXPECT_EQ(out[0], empty ? '?' : model.back()[0]);
                EXPECT_EQ(out[1], '?') << "more than the buffer's size was written";
                model.erase(model.end() - !empty, model.end());
            }
        }
        VxQueueDel(&queue);
    }
}

using RefusedItems = StartedToolkit;

TEST_F(RefusedItems, LeaveTheQueueAsBefore)
{
    char item[64] = {};
    uint32_t failure = 2; // without a record; then 1, without items
    refusingEachAllocation([&] {
        VxQueue *queue = nullptr;
        uint32_t made = VxQueueMk(64, &queue);
        if (made != 0) {
            EXPECT_EQ(made, std::exchange(failure, 1u));
            return;
        }
        int pushed = 0, popped = 0;
        for (int i = 0; i < 20; ++i)
            pushed += VxQueuePush(queue, item) == 0;
        while (VxQueuePop(queue, item, 64) == 0)
            ++popped;
        EXPECT_TRUE(pushed >= 19 && popped == pushed);
        VxQueueDel(&queue);
    });
}

}
