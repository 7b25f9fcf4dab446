#include <algorithm>
#include <array>
#include <bit>
#include <climits>
#include <cmath>
#include <cstring>
#include <map>
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
    constexpr uint32_t seed = 81;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
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

TEST(CooMatrix, TheSumOfAPositionDoesNotDependOnTheOrder)
{
    std::mt19937 random(5);
    for (size_t count : {3u, 31u, 32u, 33u, 200u}) {
        Elements elements = randomElements(random, count, 1, 1);
        CooMatrix first, second;
        insert(first, elements);
        std::shuffle(elements.begin(), elements.end(), random);
        insert(second, elements);
        EXPECT_EQ(first.Size(), 1);
        EXPECT_EQ(second.Size(), 1);
        expectSame(stored(first), stored(second));
    }
}

TEST(CooMatrix, TakesTheWholeRangeOfPositions)
{
    CooMatrix matrix;
    for (int32_t row : {INT_MAX, 0, INT_MIN})
        for (int32_t column : {INT_MAX, -1, INT_MIN})
            for (int i = 0; i < 10; ++i)
                matrix.Insert(row, column, 1);
    EXPECT_EQ(matrix.Size(), 9);
    EXPECT_EQ(matrix.begin()->row, INT_MIN);
    EXPECT_EQ(matrix.begin()->column, INT_MIN);
    EXPECT_EQ((matrix.end() - 1)->row, INT_MAX);
    EXPECT_EQ((matrix.end() - 1)->value, 10);
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

    CooMatrix never;
    inside(never).slack = 0;
    inside(never).threshold = 1;
    insert(never, Elements(10, {1, 1, 1}));
    EXPECT_EQ(stored(never).size(), 10u);
    EXPECT_EQ(never.Size(), 1);
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

TEST(CooMatrix, MirrorAddsTheOtherTriangle)
{
    CooMatrix matrix;
    insert(matrix, {{2, 1, 5}, {1, 1, 7}});
    EXPECT_FALSE(matrix.IsLowerZero());
    EXPECT_TRUE(matrix.IsUpperZero());
    matrix.Mirror();
    expectSame(stored(matrix), {{1, 1, 7}, {2, 1, 5}, {1, 2, 5}});
    matrix.Mirror();
    expectSame(stored(matrix), {{1, 1, 7}, {2, 1, 10}, {1, 2, 10}});
    EXPECT_EQ(matrix.SizeDiagonal(), 1);
}

TEST(CooMatrix, TrianglesAreZeroWhenTheirValuesAre)
{
    CooMatrix matrix;
    EXPECT_TRUE(matrix.IsLowerZero() && matrix.IsUpperZero());
    insert(matrix, {{3, 1, -0.0}, {2, 1, 4}, {2, 1, -4}, {1, 1, 1}});
    EXPECT_TRUE(matrix.IsLowerZero());
    matrix.Insert(1, 2, std::nan(""));
    EXPECT_TRUE(matrix.IsLowerZero());
    EXPECT_FALSE(matrix.IsUpperZero());
}

TEST(CooMatrix, DimensionsAreThoseOfThePositions)
{
    CooMatrix matrix;
    std::array<int32_t, 4> d{};
    matrix.Dimensions(d[0], d[1], d[2], d[3]);
    EXPECT_EQ(d, (std::array<int32_t, 4>{-1, -1, -1, -1}));
    insert(matrix, {{4, -2, 1}, {4, -2, 1}, {-7, 9, 1}});
    matrix.Dimensions(d[0], d[1], d[2], d[3]);
    EXPECT_EQ(d, (std::array<int32_t, 4>{-7, 4, -2, 9}));
    EXPECT_EQ(stored(matrix).size(), 3u) << "nothing is compacted";
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
    copy = std::move(moved);
    for (CooMatrix *each : {&assigned, &copy}) {
        EXPECT_EQ(inside(*each).compacted, 1);
        EXPECT_EQ(each->Size(), 1);
        EXPECT_EQ(each->begin()->value, 7);
    }
    EXPECT_EQ(moved.Size(), 0);
    moved.Insert(1, 1, 1);
    EXPECT_EQ(moved.Size(), 1);
    matrix.Clear();
    EXPECT_EQ(matrix.Size(), 0);
    EXPECT_EQ(inside(matrix).threshold, 1000000);
}

TEST(CooMatrix, RefusesMoreElementsThanThereCanBe)
{
    CooMatrix matrix;
    matrix.Insert(1, 2, 3);
    matrix.Reserve(0);
    matrix.Reserve(-5);
    try {
        matrix.Reserve(268435456);
        FAIL() << "nothing was thrown";
    } catch (const std::length_error &e) {
        EXPECT_STREQ(e.what(), "vector<T> too long");
    }
    expectSame(stored(matrix), {{1, 2, 3}});
    matrix.Reserve(2000000);
    EXPECT_GE(inside(matrix).threshold, 2000000);
}

TEST(CooMatrix, LosesNothingWhenMemoryIsRefused)
{
    std::mt19937 random(9);
    Elements elements = randomElements(random, 200, 9, 9);
    Elements expected = compacted(elements);
    CooMatrix matrix;
    size_t before = 0;
    bool thrown = false, refusedBefore = false;
    test::eachRefusal(
        fault::Kind::allocation, nullptr,
        [&] {
            matrix = CooMatrix();
            thrown = false;
            size_t next = 0;
            try {
                for (; next < elements.size(); ++next)
                    matrix.Insert(elements[next].row, elements[next].column, elements[next].value);
            } catch (const std::bad_alloc &) {
                thrown = true;
            }
            before = next;
            matrix.Size();
        },
        [&](bool refused) {
            refusedBefore = refusedBefore || (refused && !thrown);
            if (!thrown)
                expectSame(stored(matrix), expected);
            else
                expectSame(stored(matrix),
                           compacted({elements.begin(), elements.begin() + static_cast<long>(before)}));
        });
    EXPECT_TRUE(refusedBefore) << "compacting does without memory";

    test::eachRefusal(
        fault::Kind::allocation, nullptr,
        [&] {
            matrix = CooMatrix();
            try {
                insert(matrix, {{1, 0, 2}, {2, 0, 3}, {0, 0, 1}});
                matrix.Mirror();
            } catch (const std::bad_alloc &) {
                thrown = true;
            }
        },
        [&](bool refused) { EXPECT_TRUE(refused || matrix.Size() == 5); });
}

// ---------------------------------------------------------------- files

namespace {

/** The two texts, from a table of all positions. */
struct Texts {
    std::string list, table;

    Texts(const std::map<std::pair<int32_t, int32_t>, double> &byColumn, const std::string &separator)
    {
        auto number = [](double v) {
            char text[40];
            snprintf(text, sizeof text, "%g", v);
            return std::string(text);
        };
        int32_t diagonal = 0, columns = 0;
        for (const auto &[at, value] : byColumn) {
            diagonal += at.first == at.second;
            columns = std::max(columns, at.first + 1);
            list += "[" + std::to_string(at.second) + "," + std::to_string(at.first) +
                    "] = " + number(value) + "\r\n";
        }
        list = "[row,column] = value (" + std::to_string(byColumn.size()) + " total elements, " +
               std::to_string(diagonal) + " elements on diagonal)\r\n" + list;
        for (int32_t column = 0; column < std::max(columns, 1); ++column) {
            int32_t row = 0;
            for (const auto &[at, value] : byColumn)
                if (at.first == column) {
                    for (; row < at.second; ++row)
                        table += separator;
                    table += number(value);
                }
            table += separator + "\r\n";
        }
    }
};

/** The Laplacian of a grid in the Matrix Market's coordinate format: one triangle, numbered from 1. */
std::string gridLaplacian(int32_t side)
{
    std::ostringstream entries;
    int32_t count = 0;
    for (int32_t at = 1; at <= side * side; ++at) {
        entries << at << " " << at << " 4\n";
        ++count;
        for (int32_t next : {at % side ? at + 1 : 0, at + side})
            if (next > 0 && next <= side * side) {
                entries << next << " " << at << " -1.0\n";
                ++count;
            }
    }
    return "%%MatrixMarket matrix coordinate real symmetric\n% a grid\n" + std::to_string(side * side) + " " +
           std::to_string(side * side) + " " + std::to_string(count) + "\n" + entries.str();
}

/** Convection along a line: both triangles, and they differ. */
std::string convection(int32_t n)
{
    std::string entries;
    for (int32_t i = n; i >= 1; --i)
        for (int32_t j = std::max(1, i - 1); j <= std::min(n, i + 2); ++j)
            entries += std::to_string(i) + " " + std::to_string(j) + " " +
                       std::to_string(i * 0.125 - j * 1e-6) + "\n";
    return "%%MatrixMarket matrix coordinate real general\n" + std::to_string(n) + " " + std::to_string(n) +
           " " + std::to_string(std::count(entries.begin(), entries.end(), '\n')) + "\n" + entries;
}

CooMatrix readMatrixMarket(const std::string &text)
{
    std::istringstream in(text);
    std::string line;
    std::getline(in, line);
    const bool symmetric = line.ends_with(" symmetric");
    while (in.peek() == '%')
        std::getline(in, line);
    int32_t rows = 0, columns = 0, count = 0;
    in >> rows >> columns >> count;
    CooMatrix matrix;
    int32_t row = 0, column = 0;
    for (double value = 0; in >> row >> column >> value; --count)
        matrix.Insert(row - 1, column - 1, value);
    EXPECT_EQ(count, 0);
    if (symmetric)
        matrix.Mirror();
    return matrix;
}

}

TEST(CooMatrixFiles, MatricesOfACollectionAreWrittenByteForByte)
{
    test::TempFolder folder;
    for (const std::string &text : {gridLaplacian(7), convection(23)}) {
        folder.write("matrix.mtx", text);
        CooMatrix matrix = readMatrixMarket(folder.read("matrix.mtx"));
        std::map<std::pair<int32_t, int32_t>, double> byColumn;
        for (const auto &e : matrix)
            byColumn[{e.column, e.row}] += e.value;
        Texts expected(byColumn, ";");
        matrix.Print(folder.text("list.txt").c_str());
        matrix.PrintCSV(folder.text("table.csv").c_str(), ";");
        EXPECT_EQ(folder.read("list.txt"), expected.list);
        EXPECT_EQ(folder.read("table.csv"), expected.table);
    }
}

TEST(CooMatrixFiles, EmptyColumnsAndAnEmptyMatrixAreLinesWithASeparator)
{
    test::TempFolder folder;
    CooMatrix matrix;
    matrix.PrintCSV(folder.text("empty.csv").c_str(), ",");
    EXPECT_EQ(folder.read("empty.csv"), ",\r\n");
    matrix.Insert(1, 2, 3.5);
    matrix.PrintCSV(folder.text("one.csv").c_str(), ",");
    EXPECT_EQ(folder.read("one.csv"), ",\r\n,\r\n,3.5,\r\n");
    matrix.Insert(0, -1, 8);
    matrix.PrintCSV(folder.text("negative.csv").c_str(), "\t");
    EXPECT_EQ(folder.read("negative.csv"), "8\t\r\n\t\r\n\t\r\n\t3.5\t\r\n");
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
    matrix.Print(folder.text("none\\list.txt").c_str());
    matrix.PrintCSV(folder.text("kept.txt").c_str(), nullptr);
    EXPECT_EQ(folder.read("kept.txt"), "kept");
    fault::onlyVerb("openFile");
    fault::refuse(fault::Kind::verb, 1);
    matrix.Print(folder.text("kept.txt").c_str());
    fault::refuse(fault::Kind::verb, 0);
    fault::onlyVerb(nullptr);
    EXPECT_EQ(folder.read("kept.txt"), "kept");
}
