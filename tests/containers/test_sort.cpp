#include <algorithm>
#include <random>
#include <tuple>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/session/started_toolkit.h"
#include "tests/support/faults.h"
#include "vx/mem.h"
#include "vx/sort.h"

namespace {

using testing::ElementsAre;

/** Equal keys are told apart by their number. */
struct Record {
    int32_t key, number;

    friend bool operator==(const Record &, const Record &) = default;
};

int32_t byKey(const void *key, const void *record)
{
    int32_t x = static_cast<const Record *>(key)->key;
    int32_t y = static_cast<const Record *>(record)->key;
    return (x > y) - (x < y);
}

void *const context = reinterpret_cast<void *>(17);

int32_t byKeyWithContext(void *first, void *, const void *key, const void *record)
{
    EXPECT_EQ(first, context);
    return byKey(key, record);
}

void noteRemoved(void *first, void *removed, void *record)
{
    EXPECT_EQ(first, context);
    static_cast<std::vector<Record> *>(removed)->push_back(*static_cast<Record *>(record));
}

/** An array of records with room for one more. */
struct Table {
    std::vector<Record> records;
    int32_t count;

    explicit Table(std::vector<Record> initial)
        : records(std::move(initial)), count(static_cast<int32_t>(records.size()))
    {
        records.push_back({});
    }
    void *data() { return records.data(); }
    std::vector<Record> held() const { return {records.begin(), records.begin() + count}; }
};

int32_t insertInto(Table &table, decltype(VxSortIns) insert, Record record)
{
    return insert(table.data(), &table.count, sizeof record, &record, byKey);
}

/** Where the search described in the header ends: the position behind or before which a record goes. */
size_t insertionByHand(const std::vector<Record> &held, int32_t key)
{
    int low = 0, high = static_cast<int>(held.size()) - 1;
    int place = 0;
    while (low <= high) {
        int mid = (low + high) >> 1;
        int32_t at = held[static_cast<size_t>(mid)].key;
        place = key < at ? mid : mid + 1;
        if (key == at)
            break;
        if (key < at)
            high = mid - 1;
        else
            low = mid + 1;
    }
    return static_cast<size_t>(place);
}

}

TEST(Sort, insertsFindsAndDeletesAsAVectorDoes)
{
    std::mt19937 random(19);
    for (int round = 0; round < 200 && !testing::Test::HasFailure(); ++round) {
        Table table({});
        std::vector<Record> model;
        int32_t keys = 1 + static_cast<int32_t>(random() % 20);
        for (int32_t step = 0; step < 60; ++step) {
            Record record{static_cast<int32_t>(random()) % keys, step};
            bool known =
                std::any_of(model.begin(), model.end(), [&](Record r) { return r.key == record.key; });
            void *found = nullptr;
            EXPECT_EQ(VxSortFind(table.data(), table.count, sizeof record, &record, byKey, &found), known);
            EXPECT_TRUE(known ? static_cast<Record *>(found)->key == record.key : !found);
            bool allowsEquals = random() % 2;
            size_t place = insertionByHand(model, record.key);
            if (random() % 3) {
                bool inserts = allowsEquals || !known;
                EXPECT_EQ(insertInto(table, allowsEquals ? VxSortIns : VxSortIns2, record), inserts);
                if (inserts)
                    model.insert(model.begin() + static_cast<ptrdiff_t>(place), record);
            } else {
                EXPECT_EQ(VxSortDel(table.data(), &table.count, sizeof record, &record, byKey), known);
                if (known)
                    model.erase(model.begin() + static_cast<ptrdiff_t>(place) - 1);
            }
            ASSERT_EQ(table.held(), model);
            table.records.resize(model.size() + 1);
        }
    }
}

TEST(Sort, deletionIsToldOfTheRecordOnceWhileItStands)
{
    for (auto remove : {VxSortDel2, VxSortDelForNL}) {
        Table table({{1, 10}, {3, 30}, {5, 50}});
        std::vector<Record> removed;
        Record key{3, 0};
        for (int32_t expected : {1, 0}) {
            EXPECT_EQ(remove(table.data(), &table.count, sizeof key, &key, byKeyWithContext, noteRemoved,
                             context, &removed),
                      expected);
            EXPECT_THAT(removed, ElementsAre(Record{3, 30}));
            EXPECT_THAT(table.held(), ElementsAre(Record{1, 10}, Record{5, 50}));
        }
    }
}

TEST(Sort, linearSearchFindsWhatIsOutOfOrderButForTheFirst)
{
    Table table({{9, 0}, {8, 1}, {1, 2}, {2, 3}, {3, 4}});
    auto finds = [&](decltype(VxSortFind2) find, int32_t key) {
        void *found = nullptr;
        Record wanted{key, 0};
        return find(table.data(), 5, sizeof wanted, &wanted, byKeyWithContext, &found, context, nullptr);
    };
    EXPECT_EQ(finds(VxSortFind2, 8), 0);
    EXPECT_EQ(finds(VxSortFindForNL, 8), 1);
    EXPECT_EQ(finds(VxSortFindForNL, 9), 0);

    EXPECT_EQ(insertInto(table, VxSortInsForNL, {8, 7}), 1);
    std::vector<Record> expected{{9, 0}, {8, 1}, {8, 7}, {1, 2}, {2, 3}, {3, 4}};
    EXPECT_EQ(table.held(), expected);
}

using PairTable = vx::test::StartedToolkit;

TEST_F(PairTable, keepsPairsByDescendingKeyAndIsAsItWasWhenItCannotGrow)
{
    VxPairTable table{4, 0, 0, nullptr, 0};
    for (int32_t key : {2, INT32_MIN, 7, INT32_MAX})
        EXPECT_EQ(VxPairAdd(&table, key, 10 * (key % 10)), 0u);
    table.changed = 0;
    for (int32_t increment : {1, 0}) { // 0 would write past the end
        table.increment = increment;
        vx::fault::refuse(vx::fault::Kind::allocation, increment);
        EXPECT_EQ(VxPairAdd(&table, 2, 2), 1u);
        vx::fault::refuse(vx::fault::Kind::allocation, 0);
        EXPECT_EQ(std::tuple(table.capacity, table.count, table.changed), std::tuple(4, 4, 0));
    }
    table.increment = 4;
    EXPECT_EQ(VxPairAdd(&table, 2, 2), 0u);
    EXPECT_EQ(std::tuple(table.capacity, table.count, table.changed), std::tuple(8, 5, 1));
    std::vector<int32_t> numbers{2, INT32_MIN, 7, INT32_MAX, 2}, keys;
    VxSortInt(numbers.data(), 5);
    for (int32_t i = 0; i < table.count; ++i)
        keys.push_back(table.pairs[i].key);
    EXPECT_THAT(keys, ElementsAre(INT32_MAX, 7, 2, 2, INT32_MIN));
    EXPECT_EQ(numbers, keys) << "integers are sorted the same way";

    int32_t value = -5;
    EXPECT_EQ(VxPairIsOnList(&table, 7, &value), 1);
    EXPECT_EQ(value, 70);
    EXPECT_EQ(VxPairIsOnList(&table, 6, &value), 0);
    EXPECT_EQ(value, 0);
    void *pairs = table.pairs;
    VxMemFree(&pairs);
}
