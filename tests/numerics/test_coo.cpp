#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <cstring>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/each_refusal.h"
#include "tests/support/temp_folder.h"
#include "vx/coo.hpp"

using namespace vx;
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
    ASSERT_EQ(found.size(), expected.size());
    for (size_t i = 0; i < found.size(); ++i)
        ASSERT_EQ(std::memcmp(&found[i], &expected[i], sizeof found[i]), 0)
            << i << ": [" << found[i].row << "," << found[i].column << "] = " << found[i].value
            << " instead of [" << expected[i].row << "," << expected[i].column << "] = " << expected[i].value;
}

/** What compacting amounts to, by a sort of whole elements. */
Elements compacted(Elements elements)
{
    auto key = [](const CooMatrixElement &e) {
        return std::tuple(e.column, e.row, std::fabs(e.value), e.value);
    };
    std::sort(elements.begin(), elements.end(),
              [&](const auto &a, const auto &b) { return key(a) < key(b); });
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
    Elements elements(count);
    for (auto &e : elements) {
        e.row = static_cast<int32_t>(random() % static_cast<uint32_t>(rows)) - rows / 3;
        e.column = static_cast<int32_t>(random() % static_cast<uint32_t>(columns)) - columns / 3;
        e.value =
            std::ldexp(static_cast<double>(random() % 2000) - 1000, static_cast<int>(random() % 60) - 30);
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
    struct Case {
        size_t count;
        int32_t rows, columns;
    };
    for (auto [count, rows, columns] : {Case{1, 1, 1},
                                        {2, 1, 1},
                                        {24, 3, 3},
                                        {25, 1, 9},
                                        {60, 1, 1},
                                        {500, 7, 1},
                                        {3000, 2000, 3},
                                        {5000, INT_MAX, INT_MAX},
                                        {40000, 300, 20},
                                        {300000, 100000, 100000},
                                        {300000, 2, 70000},
                                        {300000, 1, 2}}) {
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
    std::array<int32_t, 4> d{};
    matrix.Dimensions(d[0], d[1], d[2], d[3]);
    EXPECT_EQ(d, (std::array<int32_t, 4>{INT_MIN, INT_MAX, INT_MIN, INT_MAX}));
    matrix.Clear();
    matrix.Dimensions(d[0], d[1], d[2], d[3]);
    EXPECT_EQ(d, (std::array<int32_t, 4>{-1, -1, -1, -1}));
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
    EXPECT_EQ(inside(matrix).compacted, 2);
    EXPECT_EQ(inside(matrix).threshold, 6);
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
        EXPECT_EQ(each->begin()->value, 7);
    }
    EXPECT_EQ(copy.Size(), 0);
}

TEST(CooMatrix, RefusesMoreElementsThanThereCanBe)
{
    CooMatrix matrix;
    matrix.Reserve(-5);
    try {
        matrix.Reserve(268435456);
        FAIL() << "nothing was thrown";
    } catch (const std::length_error &e) {
        EXPECT_STREQ(e.what(), "vector<T> too long");
    }
    matrix.Reserve(2000000);
    EXPECT_GE(inside(matrix).threshold, 2000000);
}

TEST(CooMatrix, LosesNothingWhenMemoryIsRefused)
{
    std::mt19937 random(9);
    const Elements elements = randomElements(random, 200, 9, 9);
    CooMatrix matrix;
    Elements taken;
    bool refusedWhileCompacting = false;
    test::eachRefusal(
        fault::Kind::allocation, nullptr,
        [&] {
            matrix = CooMatrix();
            size_t next = 0;
            try {
                for (; next < elements.size(); ++next)
                    matrix.Insert(elements[next].row, elements[next].column, elements[next].value);
            } catch (const std::bad_alloc &) {
            }
            matrix.Size();
            taken.assign(elements.begin(), elements.begin() + static_cast<ptrdiff_t>(next));
        },
        [&](bool refused) {
            refusedWhileCompacting = refusedWhileCompacting || (refused && taken.size() == elements.size());
            expectSame(stored(matrix), compacted(taken));
        });
    EXPECT_TRUE(refusedWhileCompacting) << "compacting does without memory";
}

TEST(CooMatrixFiles, AMatrixOfACollectionIsWrittenByteForByte)
{
    test::TempFolder folder;
    folder.write("matrix.mtx", "%%MatrixMarket matrix coordinate real general\n4 4 6\n"
                               "1 1 2.5\n1 3 123456789\n2 2 1e-7\n3 1 -0.125\n4 3 0.1\n4 4 -1\n");
    std::istringstream in(folder.read("matrix.mtx"));
    std::string head;
    std::getline(in, head);
    int32_t rows = 0, columns = 0, count = 0, row = 0, column = 0;
    in >> rows >> columns >> count;
    CooMatrix matrix;
    for (double value = 0; in >> row >> column >> value; --count)
        matrix.Insert(row - 1, column - 1, value);
    EXPECT_EQ(count, 0);
    matrix.Print(folder.text("list.txt").c_str());
    matrix.PrintCSV(folder.text("table.csv").c_str(), ";");
    EXPECT_EQ(folder.read("list.txt"), "[row,column] = value (6 total elements, 3 elements on diagonal)\r\n"
                                       "[0,0] = 2.5\r\n"
                                       "[2,0] = -0.125\r\n"
                                       "[1,1] = 1e-07\r\n"
                                       "[0,2] = 1.23457e+08\r\n"
                                       "[3,2] = 0.1\r\n"
                                       "[3,3] = -1\r\n");
    EXPECT_EQ(folder.read("table.csv"), "2.5;;-0.125;\r\n"
                                        ";1e-07;\r\n"
                                        "1.23457e+08;;;0.1;\r\n"
                                        ";;;-1;\r\n");
}

TEST(CooMatrixFiles, EmptyColumnsAndAnEmptyMatrixAreLinesWithASeparator)
{
    test::TempFolder folder;
    CooMatrix matrix;
    matrix.PrintCSV(folder.text("table.csv").c_str(), ",");
    EXPECT_EQ(folder.read("table.csv"), ",\r\n");
    insert(matrix, {{1, 2, 3.5}, {0, -1, 8}});
    matrix.PrintCSV(folder.text("table.csv").c_str(), "\t");
    EXPECT_EQ(folder.read("table.csv"), "8\t\r\n\t\r\n\t\r\n\t3.5\t\r\n");
}

TEST(CooMatrixFiles, NothingHappensWithoutAFile)
{
    test::TempFolder folder;
    folder.write("kept.txt", "kept");
    CooMatrix matrix;
    insert(matrix, {{0, 0, 1}, {0, 0, 1}});
    for (const char *path : {static_cast<const char *>(nullptr), "", "  \t"}) {
        matrix.Print(path);
        EXPECT_EQ(stored(matrix).size(), 2u) << "not even compacted";
    }
    matrix.PrintCSV(folder.text("kept.txt").c_str(), nullptr);
    fault::onlyVerb("openFile");
    fault::refuse(fault::Kind::verb, 1);
    matrix.Print(folder.text("kept.txt").c_str());
    fault::refuse(fault::Kind::verb, 0);
    fault::onlyVerb(nullptr);
    EXPECT_EQ(folder.read("kept.txt"), "kept");
}
