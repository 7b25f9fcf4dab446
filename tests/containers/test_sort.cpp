#include <random>

#include <gmock/gmock.h>

#include "tests/session/started_toolkit.h"
#include "tests/support/faults.h"
#include "vx/mem.h"
#include "vx/sort.h"

namespace {

using testing::ElementsAre;

/** Equal keys are told apart by their number. */
struct Record {
    int32_t key, number;

    bool operator==(const Record &) const = default;
};

int32_t byKey(const void *key, const void *record)
{
    return static_cast<const Record *>(key)->key - static_cast<const Record *>(record)->key;
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
    size_t low = 0, high = held.size();
    while (low < high) {
        size_t mid = (low + high - 1) / 2;
        if (key == held[mid].key)
            return mid + 1;
        if (key < held[mid].key)
            high = mid;
        else
            low = mid + 1;
    }
    return low;
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
            bool known = std::ranges::count(model, record.key, &Record::key);
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
    for (auto [find, key, there] :
         {std::tuple{&VxSortFind2, 8, 0}, {&VxSortFindForNL, 8, 1}, {&VxSortFindForNL, 9, 0}}) {
        void *found = nullptr;
        Record wanted{key, 0};
        EXPECT_EQ(find(table.data(), 5, sizeof wanted, &wanted, byKeyWithContext, &found, context, nullptr),
                  there);
    }
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

    for (auto [key, wanted] : {std::pair{7, 70}, {6, 0}}) {
        int32_t value = -5;
        EXPECT_EQ(VxPairIsOnList(&table, key, &value), wanted > 0);
        EXPECT_EQ(value, wanted);
    }
    void *pairs = table.pairs;
    VxMemFree(&pairs);
}
