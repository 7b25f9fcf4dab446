#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <random>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "containers/id_state.h"
#include "platform/os/test_values.h"
#include "tests/session/started_toolkit.h"
#include "tests/support/faults.h"
#include "vx/id.h"
#include "vx/mem.h"

static bool operator==(const VxId &x, const VxId &y)
{
    return VxIdSame(&x, &y);
}

static std::ostream &operator<<(std::ostream &out, const VxId &id)
{
    return out << id.a << ',' << id.b << ',' << id.c;
}

namespace {

using testing::ElementsAre;

constexpr int64_t epoch = 1'411'970'400;

VxId sum(VxId id, int32_t da, int32_t db, int32_t dc)
{
    VxIdAdd(&id, da, db, dc);
    return id;
}

class Generator : public testing::Test {
protected:
    void SetUp() override { vx::containers::idGenerator() = {}; }
    void TearDown() override
    {
        vx::os::setTestClock(-1);
        vx::containers::idGenerator() = {};
    }

    static void setSeconds(int64_t seconds) { vx::os::setTestClock(seconds * 1'000'000); }

    static VxId next()
    {
        VxId id{};
        EXPECT_EQ(VxIdNew(&id), 0u);
        return id;
    }

    /**
     * An identifier that waits for the second after `second`; the clock moves only once the wait goes on.
     * A maker that began too late waits for a second that does not come: it is let go, and another tries.
     */
    static VxId nextAcross(int64_t second)
    {
        const vx::containers::IdGenerator before = vx::containers::idGenerator();
        for (int64_t patience = 20;; patience *= 2) {
            vx::containers::idGenerator() = before;
            setSeconds(second);
            std::atomic<bool> done = false;
            VxId id{};
            std::thread maker([&] {
                id = next();
                done = true;
            });
            std::this_thread::sleep_for(std::chrono::milliseconds(patience));
            EXPECT_FALSE(done) << "did not wait for the next second";
            setSeconds(second + 1);
            for (int64_t waited = 0; !done && waited < 10 * patience; ++waited)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            bool inTime = done;
            setSeconds(second + 2);
            maker.join();
            if (inTime)
                return id;
        }
    }
};

}

TEST_F(Generator, withoutAnIdentifierSeedsFromTimeAndMemory)
{
    setSeconds(epoch + 5000);
    int64_t used = VgMemUsed;
    VgMemUsed = 1'000'000;
    EXPECT_EQ(VxIdNew(nullptr), 0u);
    EXPECT_EQ(next(), (VxId{5001, 1'000'002, 1}));
    EXPECT_EQ(next(), (VxId{5002, 1'000'003, 1}));

    VgMemUsed = -8; // |-7|
    EXPECT_EQ(VxIdInit(nullptr), 0u);
    VgMemUsed = used;
    EXPECT_EQ(next(), (VxId{5001, 8, 1}));
}

TEST_F(Generator, waitsForTheNextSecondOnItsFirstUse)
{
    std::srand(7);
    int expected = std::rand();
    std::srand(7);
    VxId first = nextAcross(epoch + 100);
    EXPECT_EQ(std::rand(), expected) << "the host's sequence is its own";
    EXPECT_GT(first.a, 0);
    EXPECT_GT(first.b, 1);
    EXPECT_EQ(first.c, 1);
    EXPECT_EQ(next(), (VxId{first.a + 1, first.b + 1, 1}));

    vx::containers::idGenerator() = {};
    EXPECT_EQ(nextAcross(epoch + 100).a, first.a) << "the first component comes from the second alone";
    vx::containers::idGenerator() = {};
    EXPECT_NE(nextAcross(epoch + 101).a, first.a);
}

TEST_F(Generator, seedsAnewAfterAMillionIdentifiers)
{
    setSeconds(epoch + 1);
    VxIdNew(nullptr);
    VxId last{};
    for (int i = 0; i < 1'000'000; ++i)
        last = next();
    EXPECT_EQ(last.a, 1'000'001);
    VxId seeded = nextAcross(epoch + 50);
    EXPECT_NE(seeded.a, last.a + 1);
    EXPECT_EQ(next(), (VxId{seeded.a + 1, seeded.b + 1, 1}));
}

TEST(Id, predicatesTellReservedAndNegativeOnes)
{
    struct Case {
        VxId id;
        bool zero, null, negative;
    };
    for (Case c : {Case{{0, 0, 0}, true, true, false}, Case{{-1, -1, -1}, false, true, false},
                   Case{{0, -1, 0}, false, true, false}, Case{{0, 0, 2}, false, false, false},
                   Case{{0, -2, 0}, false, false, false}, Case{{-2, 1, 1}, false, false, true},
                   Case{{2, -2, -2}, false, false, false}}) {
        EXPECT_EQ(VxIdIsZero(&c.id), c.zero) << c.id;
        EXPECT_EQ(VxIdNull(&c.id), c.null) << c.id;
        EXPECT_EQ(VxIdIsNegative(&c.id), c.negative) << c.id;
        VxId other = c.id;
        ++other.c;
        EXPECT_FALSE(VxIdSame(&c.id, &other));
        VxIdNegate(&c.id);
        EXPECT_LE(c.id.a, 0);
        VxIdNegate(&c.id);
        EXPECT_LE(c.id.a, 0) << "only a positive one is negated";
    }
    VxId id{1, 1, 1};
    VxIdZero(&id);
    EXPECT_EQ(id, (VxId{0, 0, 0}));
    VxIdMinusOne(&id);
    EXPECT_EQ(id, (VxId{-1, -1, -1}));
}

TEST(Id, additionSkipsReservedValues)
{
    EXPECT_EQ(sum({5, -5, 3}, 1, -1, 0), (VxId{6, -6, 3}));
    EXPECT_EQ(sum({1, 1, 1}, -1, -2, -3), (VxId{2, 2, -2}));
    EXPECT_EQ(sum({0, -1, 0}, 0, 0, -1), (VxId{2, 2, 2})) << "a reserved value is no negative one";
    EXPECT_EQ(sum({INT32_MAX, 1, 1}, 1, 0, 0).a, INT32_MIN);
}

TEST(Id, additionRestoresTheSignOfTheSecondComponentFromTheFirst)
{
    EXPECT_EQ(sum({-2, -2, -2}, 1, 1, 1), (VxId{-2, 2, -2}));
    EXPECT_EQ(sum({7, -2, -3}, 0, 10, 10), (VxId{7, -7, -7}));
    EXPECT_EQ(sum({-5, -5, 1}, 9, 12, 1), (VxId{-4, 4, 2}));

    VxId id{1, 2, 3};
    VxIdIncr(&id, 4);
    EXPECT_EQ(id, (VxId{5, 6, 7}));
    VxId x{10, 20, 30}, z{};
    VxIdCombine(&x, &id, &z);
    EXPECT_EQ(z, (VxId{15, 26, 37}));
    VxIdCombine(&x, &id, &id);
    EXPECT_EQ(id, (VxId{15, 26, 37})) << "in place";
}

namespace {

/** A list that frees its entries. */
struct List {
    VxIdList list{4, 0, 0, nullptr, 0};

    ~List()
    {
        void *entries = list.entries;
        VxMemFree(&entries);
    }
    VxIdEntry add(VxId id, int32_t value = 0, decltype(VxIdListAdd) how = VxIdListAdd)
    {
        VxIdEntry entry{id, value, -7, 0};
        EXPECT_EQ(how(&list, &entry), 0u);
        return entry;
    }
    std::vector<int32_t> positions() const
    {
        std::vector<int32_t> all;
        for (int32_t i = 0; i < list.count; ++i)
            all.push_back(list.entries[i].position);
        return all;
    }
};

}

TEST(IdList, additionSetsPositionsInTheListAndInTheCallersEntry)
{
    List ids;
    EXPECT_EQ(ids.add({3, 1, 1}).position, 1);
    EXPECT_EQ(ids.add({2, 1, 1}, 22).position, 2);
    EXPECT_EQ(ids.add({3, 1, 1}).position, 2) << "known: the count";
    EXPECT_EQ(ids.list.count, 2);
    EXPECT_EQ(ids.add({3, 1, 1}, 0, VxIdListAdd2).position, 2) << "the count before";
    EXPECT_THAT(ids.positions(), ElementsAre(1, 2, 2));
    EXPECT_EQ(ids.list.capacity, 4);

    VxIdEntry sought{{2, 1, 1}, 0, 0, 9};
    EXPECT_EQ(VxIdOnList(&ids.list, &sought), 1);
    EXPECT_EQ(sought.value, 22);
    EXPECT_EQ(sought.position, 2);
    EXPECT_EQ(sought.flag, 0);

    EXPECT_EQ(VxIdListSort(&ids.list, 1), 0u);
    EXPECT_THAT(ids.positions(), ElementsAre(2, 1));
    EXPECT_EQ(ids.add({1, 9, 9}).position, 3);
    EXPECT_EQ(ids.add({2, 1, 1}).position, 3) << "known: the count";
    EXPECT_THAT(ids.positions(), ElementsAre(3, 2, 1)) << "that of the known entry stays";
}

TEST(IdList, sortingKeepsTheSmallestPositionOfEqualIdentifiers)
{
    List ids;
    for (int32_t position : {3, 1, 2}) {
        ids.add({5, 5, 5}, 0, VxIdListAdd2);
        ids.list.entries[ids.list.count - 1].position = position;
    }
    ids.add({-5, 5, 5});
    EXPECT_EQ(VxIdListSort(&ids.list, 0), 0u);
    EXPECT_EQ(ids.list.count, 4);
    EXPECT_EQ(ids.list.entries[0].id, (VxId{-5, 5, 5})) << "components are signed";
    EXPECT_EQ(VxIdListSort(&ids.list, 1), 0u);
    ASSERT_EQ(ids.list.count, 2);
    EXPECT_EQ(ids.list.entries[1].position, 1);

    List empty;
    EXPECT_EQ(VxIdListSort(&empty.list, 1), 0u);
    EXPECT_EQ(empty.list.sorted, 1);
}

TEST(IdList, sortedAndUnsortedListsHoldTheSame)
{
    unsigned seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    List plain, sorted;
    sorted.list.sorted = 1;
    auto component = [&] { return static_cast<int32_t>(random() % 7) - 3; };
    for (int i = 0; i < 500; ++i) {
        VxId id{component(), component(), component()};
        EXPECT_EQ(plain.add(id).position, sorted.add(id).position);
        ASSERT_EQ(plain.list.count, sorted.list.count);
    }
    VxIdListSort(&plain.list, 0);
    for (int32_t i = 0; i < plain.list.count; ++i) {
        EXPECT_EQ(plain.list.entries[i].id, sorted.list.entries[i].id);
        EXPECT_EQ(plain.list.entries[i].position, sorted.list.entries[i].position);
    }
}

using IdListFailures = vx::test::StartedToolkit;

TEST_F(IdListFailures, isAsItWasWhenItCannotGrow)
{
    for (auto add : {VxIdListAdd, VxIdListAdd2}) {
        List ids;
        ids.list.increment = 1;
        ids.add({1, 1, 1});
        VxIdEntry entry{{2, 2, 2}, 0, -7, 0};
        vx::fault::refuse(vx::fault::Kind::allocation, 1);
        uint32_t result = add(&ids.list, &entry);
        vx::fault::refuse(vx::fault::Kind::allocation, 0);
        EXPECT_EQ(result, 1u);
        EXPECT_EQ(ids.list.count, 1);
        EXPECT_EQ(ids.list.capacity, 1);
        EXPECT_EQ(entry.position, -7);
    }
}

namespace {

/** A label with a text as its payload. */
std::vector<int32_t> label(int32_t kind, const char *payload)
{
    std::vector<int32_t> words(sizeof(VxLbl) / 4 + (std::strlen(payload) + 3) / 4);
    VxLbl head{static_cast<int32_t>(sizeof(VxLbl) + std::strlen(payload)), kind, {1, 2, 3}};
    std::memcpy(words.data(), &head, sizeof head);
    std::memcpy(words.data() + sizeof head / 4, payload, std::strlen(payload));
    return words;
}

const VxLbl *asLabel(const std::vector<int32_t> &words)
{
    return reinterpret_cast<const VxLbl *>(words.data());
}

class Label : public vx::test::StartedToolkit {
protected:
    Label() { vx::containers::labelLog() = {}; }
    ~Label() override { vx::containers::labelLog() = {}; }
};

}

TEST_F(Label, isLoggedByAllItsBytes)
{
    auto one = label(1, "edge"), two = label(2, "edge"), longer = label(1, "edges");
    EXPECT_EQ(VxLblSize(asLabel(longer)), 25);
    EXPECT_EQ(VxLblIsLogged(asLabel(one)), 0);
    EXPECT_EQ(VxLblLog(asLabel(one)), 0u);
    EXPECT_EQ(VxLblLog(asLabel(one)), 0u) << "again";
    EXPECT_EQ(VxLblIsLogged(asLabel(one)), 1);
    EXPECT_EQ(VxLblIsLogged(asLabel(two)), 0);
    EXPECT_EQ(VxLblIsLogged(asLabel(longer)), 0);
}

TEST_F(Label, shorterThanItsHeadIsRefused)
{
    auto words = label(1, "");
    EXPECT_EQ(VxLblLog(asLabel(words)), 0u);
    words[0] = 19;
    EXPECT_EQ(VxLblLog(asLabel(words)), 1u);
    EXPECT_EQ(VxLblIsLogged(asLabel(words)), 0);
    VxLbl *copy = nullptr;
    EXPECT_EQ(VxLblDup(asLabel(words), &copy), 1u);
    EXPECT_EQ(copy, nullptr);
}

TEST_F(Label, isLoggedAndCopiedAsAWholeOrNotAtAll)
{
    auto words = label(1, "a payload longer than short texts");
    vx::test::refusingEachAllocation([&] {
        uint32_t logged = VxLblLog(asLabel(words));
        int32_t isLogged = VxLblIsLogged(asLabel(words));
        VxLbl *copy = nullptr;
        uint32_t copied = VxLblDup(asLabel(words), &copy);
        EXPECT_EQ(isLogged, logged == 0);
        EXPECT_EQ(copy != nullptr, copied == 0);
        if (copy) {
            EXPECT_EQ(std::memcmp(copy, words.data(), static_cast<size_t>(copy->size)), 0);
        }
        void *block = copy;
        VxMemFree(&block);
        vx::containers::labelLog() = {};
    });
}
