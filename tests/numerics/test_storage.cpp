#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "numerics/storage.h"
#include "tests/support/captured_output.h"
#include "tests/support/faults.h"

namespace {

using namespace vx;
using numerics::OwnBndMat;
using numerics::OwnGenMat;

TEST(Storage, IsOneBlockWithOnlyWhatIsStored)
{
    OwnGenMat general;
    VxSymMat symmetric{};
    OwnBndMat band;
    EXPECT_EQ(VxGenMatAlloc(5, 0, &general), 1u);
    EXPECT_EQ(VxBndMatAlloc(3, 4, &band), 1u);
    ASSERT_EQ(VxGenMatAlloc(5, 7, &general), 0u);
    ASSERT_EQ(VxSymMatAlloc(5, &symmetric), 0u);
    ASSERT_EQ(VxBndMatAlloc(5, 3, &band), 0u);
    const int32_t inBand[] = {3, 3, 3, 2};
    for (int32_t i = 0; i < 4; ++i) {
        EXPECT_EQ(general.row[i + 1] - general.row[i], 7);
        EXPECT_EQ(symmetric.row[i + 1] - symmetric.row[i], i + 1);
        EXPECT_EQ(band.row[i + 1] - band.row[i], inBand[i]);
    }
    VxSymMatFree(&symmetric);
}

TEST(Storage, PrintsWhatIsStored)
{
    OwnGenMat general;
    OwnBndMat band;
    ASSERT_EQ(VxGenMatAlloc(1, 2, &general), 0u);
    ASSERT_EQ(VxBndMatAlloc(2, 2, &band), 0u);
    VxGenMatClear(&general);
    VxBndMatClear(&band);
    general.row[0][1] = -1234.56789;
    band.row[1][0] = 1e5;
    test::CapturedOutput out;
    EXPECT_EQ(VxGenMatPrint(&general), 0u);
    EXPECT_EQ(VxBndMatPrint(&band), 0u);
    EXPECT_EQ(out.text(), "row[0]:   0.0000 -1234.5679 \n"
                          "row[0]:   0.0000   0.0000 \n"
                          "row[1]: 100000.0000 \n");
}

TEST(Storage, BandsOfEveryWidthComeBackFromTheirExpansion)
{
    std::mt19937 random(5);
    std::uniform_real_distribution<double> value(1, 2);
    for (int32_t n = 1; n <= 9; ++n) {
        for (int32_t semi = 0; semi < n; ++semi) {
            SCOPED_TRACE(testing::Message() << "n " << n << " semi " << semi);
            OwnBndMat band, again, copy;
            OwnGenMat full;
            ASSERT_EQ(VxBndMatAlloc(n, semi + 1, &band), 0u);
            for (int32_t i = 0; i < n; ++i)
                for (int32_t d = 0; d < numerics::storedInRow(band, i); ++d)
                    band.row[i][d] = value(random);
            ASSERT_EQ(SymBnd2FullMat(&band, n, semi, &full), 0u);
            EXPECT_EQ(full.row[n - 1][n - 1 - semi], band.row[n - 1 - semi][semi]);
            int32_t width = -1;
            EXPECT_EQ(GetSemiBndWidth(&full, n, &width), 0u);
            EXPECT_EQ(width, semi);
            ASSERT_EQ(Full2SymBndMat(&full, n, semi, &again), 0u);
            ASSERT_EQ(VxBndMatCopy(&again, &copy), 0u);
            for (int32_t i = 0; i < n; ++i)
                for (int32_t d = 0; d < numerics::storedInRow(band, i); ++d)
                    EXPECT_EQ(copy.row[i][d], band.row[i][d]);
        }
    }
}

/** The semi-bandwidth of a 40 x 40 diagonal matrix with two elements set, in two tiles of the symmetry test. */
int32_t widthWith(double upper, double lower)
{
    OwnGenMat m;
    EXPECT_EQ(VxGenMatAlloc(40, 40, &m), 0u);
    VxGenMatClear(&m);
    for (int32_t i = 0; i < 40; ++i)
        m.row[i][i] = 1;
    m.row[2][37] = upper;
    m.row[37][2] = lower;
    int32_t width = 99;
    EXPECT_EQ(GetSemiBndWidth(&m, 40, &width), 0u);
    return width;
}

TEST(Storage, SemiBandwidthTellsSymmetryBySign)
{
    EXPECT_EQ(widthWith(0, 0), 0);
    EXPECT_EQ(widthWith(1, 1), 35);
    EXPECT_EQ(widthWith(0, 1), -35);
    EXPECT_EQ(widthWith(1, 1 + 2e-12), -35);
    EXPECT_EQ(widthWith(1, 1 + 5e-13), 35);
    EXPECT_EQ(widthWith(9e-13, 9e-13), 0);
    EXPECT_EQ(widthWith(1.1e-12, 1.1e-12), 35);
    // Neither is significant, yet they differ: minus zero is zero.
    EXPECT_EQ(widthWith(6e-13, -6e-13), 0);
}

TEST(Storage, RefusedMemoryLeavesNothing)
{
    test::refusingEachAllocation([] {
        OwnGenMat general, copy;
        OwnBndMat band;
        bool made = VxGenMatAlloc(6, 6, &general) == 0;
        bool rest = made && VxGenMatClear(&general) == 0 && VxGenMatCopy(&general, &copy) == 0 &&
                    Full2SymBndMat(&general, 6, 1, &band) == 0;
        EXPECT_EQ(rest, fault::refusals(fault::Kind::allocation) == 0);
        EXPECT_EQ(made, general.row != nullptr);
    });
}

}
