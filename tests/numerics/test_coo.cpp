#include <array>
#include <climits>
#include <cmath>
#include <cstring>
#include <random>
#include <sstream>

#include <gmock/gmock.h>

#include "tests/support/faults.h"
#include "tests/support/temp_folder.h"
#include "vx/coo.hpp"

using namespace vx;
using namespace vx::test;
using VX::CooMatrix;
using VX::CooMatrixElement;

namespace {

using Elements = std::vector<CooMatrixElement>;

// The record that hosts compiled against; slack has no other access.
struct Layout {
    int32_t compacted, slack, threshold;
    Elements elements;
};
static_assert(sizeof(CooMatrix) == sizeof(Layout) && sizeof(CooMatrixElement) == 16);

Layout &inside(CooMatrix &matrix)
{
    return reinterpret_cast<Layout &>(matrix);
}

Elements stored(const CooMatrix &matrix)
{
    return Elements(matrix.begin(), matrix.end());
}

/** Bit by bit. */
void expectSame(const Elements &found, const Elements &expected)
{
    auto same = [](const auto &a, const auto &b) { return std::memcmp(&a, &b, sizeof a) == 0; };
    const auto [at, wanted] = std::ranges::mismatch(found, expected, same);
    ASSERT_TRUE(at == found.end() && wanted == expected.end())
        << "at " << at - found.begin() << " of " << found.size() << " instead of " << expected.size();
}

/** What compacting amounts to, by a sort of whole elements. */
Elements compacted(Elements elements)
{
    std::ranges::sort(elements, {}, [](const CooMatrixElement &e) {
        return std::tuple(e.column, e.row, std::fabs(e.value), e.value);
    });
    Elements kept;
    for (const auto &e : elements)
        if (!kept.empty() && kept.back().row == e.row && kept.back().column == e.column)
            kept.back().value += e.value;
        else
            kept.push_back(e);
    return kept;
}

Elements randomElements(std::mt19937 &random, size_t count, int32_t rows, int32_t columns)
{
    auto below = [&random](int32_t n) { return static_cast<int32_t>(random() % static_cast<uint32_t>(n)); };
    Elements elements(count);
    for (auto &e : elements) {
        e.row = below(rows) - rows / 3;
        e.column = below(columns) - columns / 3;
        e.value = std::ldexp(below(2000) - 1000, below(60) - 30);
    }
    return elements;
}

void insert(CooMatrix &matrix, const Elements &elements)
{
    for (const auto &e : elements)
        matrix.Insert(e.row, e.column, e.value);
}

}

TEST(CooMatrix, CompactsLikeASortOfWholeElements)
{
    std::mt19937 random(81);
    const std::tuple<size_t, int32_t, int32_t> cases[] = {
        {1, 1, 1},       {2, 1, 1},        {24, 3, 3},               {25, 1, 9},
        {60, 1, 1},      {500, 7, 1},      {3000, 2000, 3},          {5000, INT_MAX, INT_MAX},
        {300000, 1, 2},  {40000, 300, 20}, {300000, 100000, 100000}, {300000, 2, 70000}};
    for (auto [count, rows, columns] : cases) {
        SCOPED_TRACE(testing::Message() << count << " in " << rows << " x " << columns);
        Elements elements = randomElements(random, count, rows, columns);
        CooMatrix matrix;
        insert(matrix, elements);
        Elements expected = compacted(elements);
        EXPECT_EQ(matrix.Size(), static_cast<int32_t>(expected.size()));
        expectSame(stored(matrix), expected);

        // More of them, which are merged in; what came out takes part in the order of the values.
        Elements more = randomElements(random, count / 2 + 1, rows, columns);
        insert(matrix, more);
        expected.insert(expected.end(), more.begin(), more.end());
        matrix.Size();
        expectSame(stored(matrix), compacted(expected));
    }
}

TEST(CooMatrix, TakesTheWholeRangeOfPositions)
{
    CooMatrix matrix;
    const int32_t positions[] = {INT_MAX, -1, INT_MIN};
    for (int i = 0; i < 90; ++i)
        matrix.Insert(positions[i % 3], positions[i / 3 % 3], 1);
    EXPECT_EQ(matrix.Size(), 9);
    expectSame({*matrix.begin(), *(matrix.end() - 1)}, {{INT_MIN, INT_MIN, 10}, {INT_MAX, INT_MAX, 10}});
    using Four = std::array<int32_t, 4>;
    for (const Four &expected : {Four{INT_MIN, INT_MAX, INT_MIN, INT_MAX}, Four{-1, -1, -1, -1}}) {
        Four d{};
        matrix.Dimensions(d[0], d[1], d[2], d[3]);
        EXPECT_EQ(d, expected);
        matrix.Clear();
    }
}

TEST(CooMatrix, CompactsByItselfOnceTheSlackIsUsedUp)
{
    CooMatrix matrix;
    inside(matrix).slack = inside(matrix).threshold = 4;
    insert(matrix, {{0, 0, 1}, {0, 0, 1}, {9, 9, 1}});
    EXPECT_EQ(stored(matrix).size(), 3u);
    // The call that compacts refers to the last element in order, whatever its position.
    matrix(0, 0) = 50;
    expectSame(stored(matrix), {{0, 0, 2}, {9, 9, 50}});
    EXPECT_EQ(std::pair(inside(matrix).compacted, inside(matrix).threshold), std::pair(2, 6));
    // Any other call refers to the element that it appended.
    matrix(0, 0) += 3;
    expectSame(stored(matrix), {{0, 0, 2}, {9, 9, 50}, {0, 0, 3}});
}

TEST(CooMatrix, MergesRightAfterPositionsWereChangedFromOutside)
{
    CooMatrix matrix;
    insert(matrix, {{0, 0, 1}, {1, 1, 2}, {2, 2, 3}});
    matrix.Size();
    matrix.begin()->column = 5;
    (matrix.begin() + 1)->row = (matrix.begin() + 1)->column = 2;
    // Nothing came in: nothing is sorted.
    EXPECT_EQ(matrix.Size(), 3);
    matrix.Insert(0, 5, 10);
    EXPECT_EQ(matrix.Size(), 2);
    expectSame(stored(matrix), {{2, 2, 5}, {0, 5, 11}});
}

TEST(CooMatrix, MirrorAddsTheOtherTriangleOfWhichZerosAreNoPart)
{
    CooMatrix matrix;
    insert(matrix, {{2, 1, 5}, {1, 1, 7}});
    EXPECT_FALSE(matrix.IsLowerZero());
    EXPECT_TRUE(matrix.IsUpperZero());
    matrix.Mirror();
    expectSame(stored(matrix), {{1, 1, 7}, {2, 1, 5}, {1, 2, 5}});
    EXPECT_EQ(matrix.SizeDiagonal(), 1);
    insert(matrix, {{2, 1, -5}, {3, 1, -0.0}, {1, 2, std::nan("")}});
    EXPECT_TRUE(matrix.IsLowerZero());
    EXPECT_FALSE(matrix.IsUpperZero());
}

TEST(CooMatrix, CopiesAndMovesTakeCountersAlong)
{
    CooMatrix matrix;
    insert(matrix, {{0, 0, 1}, {0, 0, 2}});
    matrix.Size();
    matrix.Insert(0, 0, 4);
    CooMatrix copy(matrix), assigned;
    assigned = copy;
    CooMatrix moved(std::move(copy));
    for (CooMatrix *each : {&assigned, &moved}) {
        EXPECT_EQ(inside(*each).compacted, 1);
        EXPECT_EQ(each->Size(), 1);
        expectSame(stored(*each), {{0, 0, 7}});
    }
    EXPECT_EQ(copy.Size(), 0);
}

TEST(CooMatrix, RefusesMoreElementsThanThereCanBe)
{
    CooMatrix matrix;
    matrix.Reserve(-5);
    EXPECT_THAT([&] { matrix.Reserve(268435456); },
                testing::ThrowsMessage<std::length_error>("vector<T> too long"));
    matrix.Reserve(2000000);
    EXPECT_GE(inside(matrix).threshold, 2000000);
}

TEST(CooMatrix, LosesNothingWhenMemoryIsRefused)
{
    std::mt19937 random(9);
    const Elements elements = randomElements(random, 200, 9, 9);
    CooMatrix matrix;
    auto next = elements.begin();
    bool refusedWhileCompacting = false;
    auto fill = [&] {
        matrix = CooMatrix();
        try {
            for (next = elements.begin(); next != elements.end(); ++next)
                matrix.Insert(next->row, next->column, next->value);
        } catch (const std::bad_alloc &) {
        }
        matrix.Size();
    };
    eachRefusal(fault::Kind::allocation, nullptr, fill, [&](bool refused) {
        refusedWhileCompacting = refusedWhileCompacting || (refused && next == elements.end());
        expectSame(stored(matrix), compacted({elements.begin(), next}));
    });
    EXPECT_TRUE(refusedWhileCompacting) << "compacting does without memory";
}

struct CooMatrixFiles : testing::Test {
    /** What the matrix prints as a table. */
    std::string table(const char *separator)
    {
        matrix.PrintCSV(folder.text("table.csv").c_str(), separator);
        return folder.read("table.csv");
    }

    TempFolder folder;
    CooMatrix matrix;
};

TEST_F(CooMatrixFiles, AMatrixOfACollectionIsWrittenByteForByte)
{
    folder.write("matrix.mtx", "%%MatrixMarket matrix coordinate real general\n4 4 6\n"
                               "1 1 2.5\n1 3 123456789\n2 2 1e-7\n3 1 -0.125\n4 3 0.1\n4 4 -1\n");
    std::istringstream in(folder.read("matrix.mtx"));
    std::string head;
    std::getline(in, head);
    int32_t rows = 0, columns = 0, count = 0, row = 0, column = 0;
    in >> rows >> columns >> count;
    for (double value = 0; in >> row >> column >> value; --count)
        matrix.Insert(row - 1, column - 1, value);
    EXPECT_EQ(count, 0);
    matrix.Print(folder.text("list.txt").c_str());
    EXPECT_EQ(folder.read("list.txt"),
              "[row,column] = value (6 total elements, 3 elements on diagonal)\r\n[0,0] = 2.5\r\n"
              "[2,0] = -0.125\r\n[1,1] = 1e-07\r\n[0,2] = 1.23457e+08\r\n[3,2] = 0.1\r\n[3,3] = -1\r\n");
    EXPECT_EQ(table(";"), "2.5;;-0.125;\r\n;1e-07;\r\n1.23457e+08;;;0.1;\r\n;;;-1;\r\n");
}

TEST_F(CooMatrixFiles, EmptyColumnsAndAnEmptyMatrixAreLinesWithASeparator)
{
    EXPECT_EQ(table(","), ",\r\n");
    insert(matrix, {{1, 2, 3.5}, {0, -1, 8}});
    EXPECT_EQ(table("\t"), "8\t\r\n\t\r\n\t\r\n\t3.5\t\r\n");
}

TEST_F(CooMatrixFiles, NothingHappensWithoutAFile)
{
    folder.write("table.csv", "kept");
    insert(matrix, {{0, 0, 1}, {0, 0, 1}});
    for (const char *path : {static_cast<const char *>(nullptr), "", "  \t"}) {
        matrix.Print(path);
        EXPECT_EQ(stored(matrix).size(), 2u) << "not even compacted";
    }
    EXPECT_EQ(table(nullptr), "kept");
    auto print = [&, path = folder.text("table.csv")] { matrix.Print(path.c_str()); };
    eachRefusal(fault::Kind::verb, "openFile", print, [&](bool refused) {
        EXPECT_EQ(folder.read("table.csv") == "kept", refused);
    });
}
