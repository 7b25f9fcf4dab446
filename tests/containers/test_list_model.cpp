// Lists of every layout beside a model, through random operations and
// conversions; after each one, content, count, capacity and all walks agree.
// The second run refuses every allocation of every operation in turn: what
// fails changes nothing.

#include <cstring>
#include <functional>
#include <random>

#include "platform/os/fault.h"
#include "tests/containers/list_model.h"
#include "tests/session/started_toolkit.h"
#include "vx/mem.h"

namespace vx::test {

namespace {

int32_t byWords(const void *a, const void *b)
{
    return std::memcmp(a, b, valueBytes);
}

bool isLess(const Item &a, const Item &b)
{
    return byWords(&a.value, &b.value) < 0;
}

/** A tree's: equal values are rejected, which leaves them in the list all the same. */
int32_t forTree(const void *a, const void *b)
{
    int32_t result = byWords(a, b);
    return result == 0 ? 2 : result < 0 ? 1 : 0;
}

void *wrappedArray(const VxList *list)
{
    return list && list->layout == wrapped ? list->data : nullptr;
}

/** A list and what it is to hold. A wrapped list's array is freed here. */
struct Pair {
    VxList *list = nullptr;
    ListModel model;

    Pair() = default;
    Pair(const Pair &) = delete;
    Pair &operator=(const Pair &) = delete;
    ~Pair()
    {
        void *array = wrappedArray(list);
        VxListDel(&list);
        VxMemFree(&array);
    }
};

void expectSame(const Pair &pair)
{
    VxList *list = pair.list;
    const ListModel &model = pair.model;
    ASSERT_EQ(std::tuple(list->layout, list->count, list->capacity, list->pageLevel, list->increment),
              std::tuple(model.layout, model.count(), model.capacity, model.level, model.increment));
    if (model.level > 0) {
        ASSERT_EQ(std::pair(list->dirSlots, model.level == 1 ? list->perPage : list->perPage2),
                  std::pair(slots, perPage));
    }
    for (int32_t direction = 0; direction < 3; ++direction) {
        VxListIter iter;
        VxListIterOld start;
        Value value{};
        ASSERT_EQ(VxListItrInit(list, direction, &start) + VxListItrInit2(list, direction, &iter), 0u);
        ASSERT_EQ(start.index, model.begin(direction)) << "direction " << direction;
        for (const Item &item : model.walk(direction)) {
            ASSERT_EQ(VxListItr(&iter, &value), 0) << "direction " << direction << " at " << item.key;
            ASSERT_EQ(std::pair(iter.index, value), std::pair(item.key, item.value)) << direction;
        }
        ASSERT_EQ(VxListItr(&iter, &value), -1) << "direction " << direction;
    }
    for (const Item &item : model.walk(0)) {
        Value value{};
        ASSERT_EQ(VxListGet(list, item.key, &value), 0u);
        ASSERT_EQ(value, item.value) << "at " << item.key;
        void *stored = nullptr;
        const bool inArray = VxListArrayPtr(list, item.key, &stored) == 0;
        ASSERT_TRUE(!inArray || VxListAt(list, item.key) == stored) << "at " << item.key;
    }
}

class ListRun : public StartedToolkit, public testing::WithParamInterface<std::tuple<int32_t, bool>> {
protected:
    using Call = std::function<uint32_t()>;

    void SetUp() override
    {
        StartedToolkit::SetUp();
        savedPage_ = std::exchange(VgPageSize, smallPage);
        seed_ = static_cast<uint32_t>(3000 + layout_);
        random_.seed(seed_);
        make(pair_, layout_);
    }

    void TearDown() override
    {
        VgPageSize = savedPage_;
        StartedToolkit::TearDown();
    }

    int32_t below(int32_t n) { return static_cast<int32_t>(random_() % static_cast<uint32_t>(n)); }
    int32_t between(int32_t low, int32_t high) { return low + below(high - low + 1); }
    Value anyValue() { return {{below(12), 1, 2}}; }

    void make(Pair &pair, int32_t layout)
    {
        int32_t capacity = layout == wrapped ? 60 : below(12);
        int32_t increment = below(6);
        ASSERT_EQ(VxListMk(layout, valueBytes, capacity, increment, forTree, &pair.list), 0u);
        pair.model = *ListModel::made(layout, capacity, increment);
    }

    /** Another list of any layout, with a few values. */
    void fill(Pair &pair)
    {
        make(pair, below(6));
        for (int32_t n = below(25); n > 0; --n) {
            int32_t index = pair.model.layout == keyed ? between(-20, 60) : pair.model.count();
            Value value = anyValue();
            pair.model.set(index, value);
            ASSERT_EQ(VxListSet(pair.list, index, &value), 0u);
        }
    }

    /** Run an operation that is to bring the list to `next`, or to fail. */
    void expect(const Call &call, const std::optional<ListModel> &next, const Pair *other = nullptr)
    {
        for (int64_t nth = 1;; ++nth) {
            void *array = wrappedArray(pair_.list);
            fault::refuse(fault::Kind::allocation, refusing_ ? nth : 0);
            uint32_t result = call();
            bool met = fault::refusals(fault::Kind::allocation) > 0;
            fault::refuse(fault::Kind::allocation, 0);
            VxErrClear();
            if (result == 0) {
                ASSERT_TRUE(next) << "succeeded";
                if (array && pair_.list->data != array)
                    VxMemFree(&array);
                return become(*next);
            }
            ASSERT_NO_FATAL_FAILURE(expectSame(pair_)) << "after a failure";
            if (other) {
                ASSERT_NO_FATAL_FAILURE(expectSame(*other)) << "after a failure, the source";
            }
            if (!next)
                return;
            ASSERT_TRUE(met) << "failed";
        }
    }

    /** Slots that a store past the end passed hold anything, and are taken over as they are. */
    void become(const ListModel &next)
    {
        int32_t known = pair_.model.count();
        pair_.model = next;
        for (int32_t i = known; pair_.model.inSlots() && i < next.count(); ++i) {
            Value &value = pair_.model.items[static_cast<size_t>(i)].value;
            if (value == Value{}) {
                ASSERT_EQ(VxListGet(pair_.list, i, &value), 0u) << "slot " << i;
            }
        }
        expectSame(pair_);
    }

    template <typename Change> std::optional<ListModel> after(Change change)
    {
        ListModel next = pair_.model;
        return change(next) ? std::optional(next) : std::nullopt;
    }

    /** Mostly an index that means something, at times one around every limit. */
    int32_t anyIndex()
    {
        const ListModel &model = pair_.model;
        if (model.layout == keyed)
            return below(40) == 0 ? INT32_MIN + below(2) : between(-60, 200);
        switch (below(8)) {
        case 0: return between(-2, 0);
        case 1: return model.capacity + std::max(model.increment, 1) * 11 - below(3);
        case 2: return model.count() + below(4);
        case 3: return model.count();
        default: return model.count() > 0 ? below(model.count()) : 0;
        }
    }

    void store()
    {
        int32_t index = anyIndex();
        Value value = anyValue();
        const bool inserts = below(2);
        expect([&] { return (inserts ? VxListIns : VxListSet)(pair_.list, index, &value); },
               after([&](ListModel &next) {
                   return inserts ? next.insert(index, value) : next.set(index, value);
               }));
    }

    /** Ends at the first store that fails and keeps those before it, so that no refusal is tried. */
    void storeRange()
    {
        int32_t first = anyIndex();
        int32_t n = below(5);
        Value value = anyValue();
        ListModel next = pair_.model;
        bool good = true;
        for (int32_t i = 0; i < n && good; ++i)
            good = next.set(first + i, value);
        ASSERT_EQ(VxListFill(pair_.list, first, n, &value), good ? 0u : 1u);
        become(next);
    }

    void storeUnique()
    {
        Value value = anyValue();
        value.words[0] += 6;
        int32_t index = 0;
        const std::vector<Item> items = pair_.model.walk(0);
        const auto known = std::ranges::find(items, value, &Item::value);
        const bool present = known != items.end();
        const int32_t wanted = present                       ? known->key
                               : pair_.model.layout == keyed ? pair_.model.capacity + 1
                                                             : pair_.model.count();
        expect([&] { return VxListSetUnique(pair_.list, &value, &index); },
               after([&](ListModel &next) { return present || next.set(wanted, value); }));
        bool stored = pair_.model.layout == keyed || pair_.model.count() > wanted;
        EXPECT_EQ(index, stored ? wanted : -1);
    }

    void removeRange()
    {
        int32_t first = anyIndex();
        int32_t last = first + below(8);
        expect([&] { return VxListDelElem(pair_.list, first, last); },
               after([&](ListModel &next) { return next.remove(first, last); }));
    }

    void removeValue()
    {
        Value value = anyValue();
        expect([&] { return VxListDelVal(pair_.list, &value); },
               after([&](ListModel &next) { return next.removeEqual(value); }));
    }

    void truncate()
    {
        int32_t n = std::max(pair_.model.count() - below(below(4) == 0 ? 200 : 12), below(6) - 1);
        expect([&] { return VxListDownsize(pair_.list, n); },
               after([&](ListModel &next) { return next.truncate(n); }));
    }

    void growOrReset()
    {
        int32_t extra = below(20);
        if (below(8) != 0)
            return expect([&] { return VxListResizeArr(pair_.list, extra); },
                          after([&](ListModel &next) { return next.grow(extra); }));
        expect([&] { return VxListReset(pair_.list); }, after([](ListModel &next) {
                   next.items.clear();
                   return true;
               }));
    }

    void reorder()
    {
        if (below(2) == 0)
            return expect([&] { return VxListSort(pair_.list, byWords); }, after([](ListModel &next) {
                              std::ranges::stable_sort(next.items, isLess);
                              return next.inSlots();
                          }));
        expect([&] { return VxListRvrs(pair_.list); }, after([](ListModel &next) {
                   if (next.layout != keyed && next.layout != tree)
                       std::ranges::reverse(next.items);
                   return true;
               }));
    }

    /** Indices sorted by value, ties by index: exact for the stable sort. */
    void sortIndices()
    {
        std::vector<Item> wanted = pair_.model.walk(1);
        std::ranges::stable_sort(wanted, isLess);
        int32_t *order = nullptr;
        expect([&] { return VxListSort3(pair_.list, byWords, &order); }, pair_.model);
        for (size_t i = 0; i < wanted.size(); ++i)
            ASSERT_EQ(order[i], wanted[i].key);
        void *block = order;
        VxMemFree(&block);
    }

    void convert()
    {
        bool away = pair_.model.layout != layout_;
        int32_t layout = away && below(2) == 0 ? layout_ : below(6);
        if (below(6) != 0)
            return expect([&] { return VxListConvert(layout, pair_.list); }, pair_.model.convertedTo(layout));
        auto next = pair_.model.layout == wrapped || (pair_.model.layout == array && pair_.model.level == 0)
                        ? pair_.model
                        : *pair_.model.convertedTo(linked);
        if (next.layout == linked) {
            next.layout = array;
            next.capacity = next.count();
            next.increment = std::max(pair_.model.increment, 1);
        } else if (next.layout == array && next.level > 0) {
            next.level = 0;
            next.capacity = next.count();
        }
        void *elements = nullptr;
        expect([&] { return VxListGetArray(pair_.list, &elements); }, next);
        EXPECT_EQ(elements, pair_.model.count() > 0 ? pair_.list->data : nullptr);
    }

    void concatenate()
    {
        Pair source;
        fill(source);
        void *array = wrappedArray(source.list);
        auto next = after([&](ListModel &list) { return list.append(source.model); });
        expect([&] { return VxListConcat(pair_.list, source.list); }, next, &source);
        EXPECT_TRUE(!next || source.list->count == 0);
        if (source.list->data != array)
            VxMemFree(&array);
    }

    void copyFromAnother()
    {
        Pair source;
        fill(source);
        enum How : int32_t { atSameKeys, behind, inPlace };
        const int32_t how = below(source.model.layout == keyed ? 3 : 2);
        auto next = after([&](ListModel &list) {
            if (how == inPlace)
                list.items.clear();
            if (list.layout != keyed)
                return list.append(source.model) || source.model.items.empty();
            for (const Item &item : source.model.walk(0))
                list.set(how == atSameKeys ? item.key : list.count(), item.value);
            return true;
        });
        auto copy = how == atSameKeys ? VxListCopy2 : how == behind ? HashConvertList : VxKeyListCnvrt;
        expect([&] { return copy(source.list, pair_.list); }, next, &source);
        expectSame(source);
    }

    /** Go on with a copy in the list's place. */
    void goOnWithCopy()
    {
        ListModel next = pair_.model;
        if (next.layout == wrapped)
            next.layout = array;
        if (next.inSlots()) {
            next.capacity = std::max(next.capacity, 1);
            next.increment = std::max(next.increment, 1);
        }
        VxList *copy = nullptr;
        expect([&] { return VxListCopy(pair_.list, &copy); }, pair_.model);
        if (next.layout == array && next.level > 0)
            next.level = ListModel::levelFor(next.capacity);
        void *array = wrappedArray(pair_.list);
        VxListDel(&pair_.list);
        VxMemFree(&array);
        pair_.list = copy;
        pair_.model = next;
        expectSame(pair_);
    }

    void step(bool growing)
    {
        static const struct {
            int32_t whenGrowing, whenShrinking; ///< how often, of 40 steps
            void (ListRun::*operation)();
        } kinds[] = {
            {24, 8, &ListRun::store},      {1, 19, &ListRun::removeRange}, {4, 1, &ListRun::concatenate},
            {1, 1, &ListRun::growOrReset}, {1, 1, &ListRun::removeValue},  {1, 2, &ListRun::truncate},
            {1, 1, &ListRun::reorder},     {1, 1, &ListRun::sortIndices},  {2, 2, &ListRun::convert},
            {1, 1, &ListRun::storeUnique}, {1, 1, &ListRun::storeRange},   {1, 1, &ListRun::copyFromAnother},
            {1, 1, &ListRun::goOnWithCopy}};
        int32_t place = below(40);
        for (const auto &kind : kinds)
            if ((place -= growing ? kind.whenGrowing : kind.whenShrinking) < 0)
                return (this->*kind.operation)();
    }

    /** The elements in a block of the caller's, and nothing left in the list. */
    void end()
    {
        void *array = wrappedArray(pair_.list), *block = nullptr;
        int32_t count = -1;
        ASSERT_EQ(VxListCnvrtArr(valueBytes, pair_.list, &count, &block), 0u);
        ASSERT_EQ(std::pair(count, pair_.list->count), std::pair(pair_.model.count(), 0));
        for (int32_t i = 0; i < count; ++i)
            EXPECT_EQ(static_cast<Value *>(block)[i], pair_.model.items[static_cast<size_t>(i)].value);
        VxMemFree(&block);
        VxMemFree(&array);
    }

    const int32_t layout_ = std::get<0>(GetParam());
    const bool refusing_ = std::get<1>(GetParam());
    Pair pair_;
    uint32_t seed_ = 0;
    bool seenLevel_[3] = {};

private:
    std::mt19937 random_;
    int32_t savedPage_ = 0;
};

TEST_P(ListRun, AgreesWithItsModelAfterEveryStep)
{
    const int steps = refusing_ ? 400 : 6000;
    for (int i = 0; i < steps; ++i) {
        SCOPED_TRACE(testing::Message() << "seed " << seed_ << ", step " << i << ", layout "
                                        << pair_.model.layout << ", count " << pair_.model.count());
        step(i / 150 % 2 == 0 && pair_.model.count() < 300);
        if (HasFatalFailure())
            return;
        seenLevel_[pair_.model.level] = true;
    }
    EXPECT_TRUE(layout_ != array || (seenLevel_[0] && seenLevel_[1] && seenLevel_[2])) << "of page levels";
    end();
}

INSTANTIATE_TEST_SUITE_P(LayoutsWithAndWithoutRefusals, ListRun,
                         testing::Combine(testing::Range(0, 6), testing::Bool()));

}

}
