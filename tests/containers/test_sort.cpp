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
};

bool operator==(const Record &x, const Record &y)
{
    return x.key == y.key && x.number == y.number;
}

std::ostream &operator<<(std::ostream &out, const Record &record)
{
    return out << record.key << '#' << record.number;
}

int32_t byKey(const void *key, const void *record)
{
    int32_t x = static_cast<const Record *>(key)->key;
    int32_t y = static_cast<const Record *>(record)->key;
    return (x > y) - (x < y);
}

struct Witness {
    int32_t calls = 0;
    Record removed{};
};

/** The first context word must come through; the second is a Witness. */
int32_t byKeyWithContext(void *c1, void *, const void *key, const void *record)
{
    EXPECT_EQ(c1, reinterpret_cast<void *>(17));
    return byKey(key, record);
}

void noteRemoved(void *c1, void *c2, void *record)
{
    EXPECT_EQ(c1, reinterpret_cast<void *>(17));
    auto witness = static_cast<Witness *>(c2);
    ++witness->calls;
    witness->removed = *static_cast<Record *>(record);
}

void *const context = reinterpret_cast<void *>(17);

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

using Insert = int32_t (*)(void *, int32_t *, int32_t, const void *, VxCmpFn);

int32_t insertInto(Table &table, Insert insert, Record record)
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
    unsigned seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
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
            EXPECT_EQ(found != nullptr, known);
            if (known) {
                EXPECT_EQ(static_cast<Record *>(found)->key, record.key);
            }
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
        Witness witness;
        Record key{3, 0};
        EXPECT_EQ(remove(table.data(), &table.count, sizeof key, &key, byKeyWithContext, noteRemoved, context,
                         &witness),
                  1);
        EXPECT_EQ(witness.calls, 1);
        EXPECT_EQ(witness.removed, (Record{3, 30}));
        EXPECT_THAT(table.held(), ElementsAre(Record{1, 10}, Record{5, 50}));
        EXPECT_EQ(remove(table.data(), &table.count, sizeof key, &key, byKeyWithContext, noteRemoved, context,
                         &witness),
                  0);
        EXPECT_EQ(witness.calls, 1);
        key.key = 5;
        EXPECT_EQ(
            remove(table.data(), &table.count, sizeof key, &key, byKeyWithContext, nullptr, context, nullptr),
            1);
        EXPECT_THAT(table.held(), ElementsAre(Record{1, 10}));
    }
}

TEST(Sort, linearSearchFindsWhatIsOutOfOrderButForTheFirst)
{
    Table table({{9, 0}, {8, 1}, {1, 2}, {2, 3}, {3, 4}});
    void *found = nullptr;
    Record key{8, 0};
    EXPECT_EQ(VxSortFind2(table.data(), 5, sizeof key, &key, byKeyWithContext, &found, context, nullptr), 0);
    EXPECT_EQ(VxSortFindForNL(table.data(), 5, sizeof key, &key, byKeyWithContext, &found, context, nullptr),
              1);
    EXPECT_EQ(found, &table.records[1]);
    key.key = 9;
    EXPECT_EQ(VxSortFindForNL(table.data(), 5, sizeof key, &key, byKeyWithContext, &found, context, nullptr),
              0);

    EXPECT_EQ(insertInto(table, VxSortInsForNL, {8, 7}), 1);
    std::vector<Record> expected{{9, 0}, {8, 1}, {8, 7}, {1, 2}, {2, 3}, {3, 4}};
    EXPECT_EQ(table.held(), expected);
    Table ordered({{1, 0}, {5, 1}});
    EXPECT_EQ(insertInto(ordered, VxSortInsForNL, {3, 2}), 1);
    EXPECT_THAT(ordered.held(), ElementsAre(Record{1, 0}, Record{3, 2}, Record{5, 1}));
}

TEST(PairTable, keepsPairsByDescendingKeyAndGrowsByItsIncrement)
{
    VxPairTable table{4, 0, 0, nullptr, 0};
    for (int32_t key : {2, INT32_MIN, 7, INT32_MAX, 2}) {
        EXPECT_EQ(VxPairAdd(&table, key, 10 * (key % 10)), 0u);
        EXPECT_EQ(table.changed, 1);
    }
    EXPECT_EQ(table.capacity, 8);
    ASSERT_EQ(table.count, 5);
    std::vector<int32_t> numbers{2, INT32_MIN, 7, INT32_MAX, 2};
    VxSortInt(numbers.data(), 5);
    std::vector<int32_t> keys;
    for (int32_t i = 0; i < table.count; ++i)
        keys.push_back(table.pairs[i].key);
    EXPECT_THAT(keys, ElementsAre(INT32_MAX, 7, 2, 2, INT32_MIN));
    EXPECT_EQ(numbers, keys) << "integers are sorted the same way";

    int32_t value = -5;
    EXPECT_EQ(VxPairIsOnList(&table, 7, &value), 1);
    EXPECT_EQ(value, 70);
    EXPECT_EQ(VxPairIsOnList(&table, 7, nullptr), 1);
    EXPECT_EQ(VxPairIsOnList(&table, 6, &value), 0);
    EXPECT_EQ(value, 0);
    void *pairs = table.pairs;
    VxMemFree(&pairs);
}

using PairTableFailures = vx::test::StartedToolkit;

TEST_F(PairTableFailures, isAsItWasWhenItCannotGrow)
{
    VxPairTable table{1, 0, 0, nullptr, 0};
    ASSERT_EQ(VxPairAdd(&table, 1, 1), 0u);
    table.changed = 0;
    const VxPairTable before = table;
    for (int32_t increment : {1, 0}) { // 0 would write past the end
        table.increment = increment;
        vx::fault::refuse(vx::fault::Kind::allocation, increment);
        uint32_t result = VxPairAdd(&table, 2, 2);
        vx::fault::refuse(vx::fault::Kind::allocation, 0);
        EXPECT_EQ(result, 1u);
        EXPECT_EQ(std::tie(table.capacity, table.count, table.pairs, table.changed),
                  std::tie(before.capacity, before.count, before.pairs, before.changed));
    }
    table.increment = 1;
    EXPECT_EQ(VxPairAdd(&table, 2, 2), 0u);
    void *pairs = table.pairs;
    VxMemFree(&pairs);
}
