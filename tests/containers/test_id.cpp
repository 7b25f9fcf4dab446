#include <atomic>
#include <cstring>
#include <random>
#include <thread>

#include "containers/id_state.h"
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

constexpr int64_t epoch = 1'411'970'400;

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
    VgMemUsed = -8; // |-7|
    EXPECT_EQ(VxIdInit(nullptr), 0u);
    VgMemUsed = used;
    EXPECT_EQ(next(), (VxId{5001, 8, 1}));
}

TEST_F(Generator, waitsForTheNextSecondOnItsFirstUse)
{
    std::srand(7);
    const int expected = std::rand();
    std::srand(7);
    const VxId first = nextAcross(epoch + 100);
    EXPECT_EQ(std::rand(), expected) << "the host's sequence is its own";
    EXPECT_EQ(next(), (VxId{first.a + 1, first.b + 1, 1}));
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
    const std::tuple<VxId, int32_t, int32_t> cases[] = { // null or not, negative or not
        {{0, 0, 0}, 1, 0},  {{-1, -1, -1}, 1, 0}, {{0, -1, 0}, 1, 0},  {{0, 0, 2}, 0, 0},
        {{0, -2, 0}, 0, 0}, {{-2, 1, 1}, 0, 1},   {{2, -2, -2}, 0, 0}};
    for (auto [id, null, negative] : cases) {
        EXPECT_EQ(std::pair(VxIdNull(&id), VxIdIsNegative(&id)), std::pair(null, negative)) << id;
        VxIdNegate(&id);
        VxIdNegate(&id);
        EXPECT_LE(id.a, 0) << "only a positive one is negated";
    }
}

TEST(Id, additionSkipsReservedValuesAndSignsTheSecondComponentLikeTheFirst)
{
    const VxId sums[][3] = {
        {{5, -5, 3}, {1, -1, 0}, {6, -6, 3}},    {{1, 1, 1}, {-1, -2, -3}, {2, 2, -2}},
        {{-2, -2, -2}, {1, 1, 1}, {-2, 2, -2}},  {{7, -2, -3}, {0, 10, 10}, {7, -7, -7}},
        {{-5, -5, 1}, {9, 12, 1}, {-4, 4, 2}},   {{INT32_MAX, 1, 1}, {1, 0, 0}, {INT32_MIN, 1, 1}},
        {{0, -1, 0}, {0, 0, -1}, {2, 2, 2}}, // a reserved value is no negative one
    };
    for (const auto &[from, added, expected] : sums) {
        VxId id = from;
        VxIdAdd(&id, added.a, added.b, added.c);
        EXPECT_EQ(id, expected);
    }
    VxId x{10, 20, 30}, y{5, 6, 7};
    VxIdCombine(&x, &y, &y);
    EXPECT_EQ(y, (VxId{15, 26, 37})) << "in place";
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
};

}

TEST(IdList, additionSetsPositionsInTheListAndInTheCallersEntry)
{
    List ids;
    EXPECT_EQ(ids.add({3, 1, 1}).position, 1);
    EXPECT_EQ(ids.add({2, 1, 1}, 22).position, 2);
    for (auto add : {VxIdListAdd, VxIdListAdd2}) // known: the count; and the count before
        EXPECT_EQ(ids.add({3, 1, 1}, 0, add).position, 2);
    ASSERT_EQ(ids.list.count, 3);
    VxIdEntry sought{{2, 1, 1}, 0, 0, 9};
    EXPECT_EQ(VxIdOnList(&ids.list, &sought), 1);
    EXPECT_EQ(std::tuple(sought.value, sought.position, sought.flag), std::tuple(22, 2, 0));

    EXPECT_EQ(VxIdListSort(&ids.list, 1), 0u);
    ASSERT_EQ(ids.list.count, 2);
    EXPECT_EQ(ids.list.entries[1].position, 1) << "equal ones keep the smallest";
    EXPECT_EQ(ids.add({2, 1, 1}).position, 2) << "known: the count";
}

TEST(IdList, sortedAndUnsortedListsHoldTheSame)
{
    std::mt19937 random(17);
    List plain, sorted;
    sorted.list.sorted = 1;
    std::uniform_int_distribution<int32_t> component(-3, 3);
    for (int i = 0; i < 500; ++i) {
        VxId id{component(random), component(random), component(random)};
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
        VxIdEntry entry{{2, 2, 2}, 0, -7, 0};
        vx::fault::refuse(vx::fault::Kind::allocation, 1);
        EXPECT_EQ(add(&ids.list, &entry), 1u);
        vx::fault::refuse(vx::fault::Kind::allocation, 0);
        EXPECT_EQ(std::tuple(ids.list.count, ids.list.capacity, entry.position), std::tuple(0, 0, -7));
    }
}

namespace {

/** A label with a text as its payload. */
struct Labelled {
    VxLbl head;
    char payload[36];

    Labelled(int32_t kind, const char *text) : head{0, kind, {1, 2, 3}}, payload()
    {
        std::strcpy(payload, text);
        head.size = static_cast<int32_t>(sizeof head + std::strlen(text));
    }
};

using Label = vx::test::StartedToolkit;

}

TEST_F(Label, isLoggedByAllItsBytesAsAWholeOrNotAtAll)
{
    Labelled one(1, "a payload longer than short texts"), two(2, one.payload);
    Labelled longer(1, "a payload longer than short texts.");
    vx::test::refusingEachAllocation([&] {
        vx::containers::labelLog() = {};
        bool logged = VxLblLog(&one.head) == 0;
        EXPECT_EQ(VxLblIsLogged(&one.head), logged);
        EXPECT_EQ(VxLblIsLogged(&two.head) + VxLblIsLogged(&longer.head), 0);
        VxLbl *copy = nullptr;
        bool copied = VxLblDup(&one.head, &copy) == 0;
        EXPECT_EQ(copy != nullptr, copied);
        EXPECT_TRUE(!copied || std::memcmp(copy, &one, static_cast<size_t>(one.head.size)) == 0);
        void *block = copy;
        VxMemFree(&block);
    });
    vx::containers::labelLog() = {};
    one.head.size = sizeof(VxLbl) - 1;
    EXPECT_EQ(VxLblLog(&one.head), 1u) << "shorter than its head";
}
