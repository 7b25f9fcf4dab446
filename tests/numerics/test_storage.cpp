#include "tests/numerics/matrices.h"
#include "tests/support/captured_output.h"

namespace {

using namespace vx;
using namespace vx::test;
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
    Matrix general(1, 2, [](int32_t, int32_t j) { return j ? -1234.56789 : 0; });
    VxSymMat symmetric{};
    OwnBndMat band;
    ASSERT_EQ(VxSymMatAlloc(2, &symmetric) + VxBndMatAlloc(2, 2, &band), 0u);
    ASSERT_EQ(VxSymMatClear(&symmetric) + VxBndMatClear(&band), 0u);
    band.row[1][0] = 1e5;
    CapturedOutput out;
    EXPECT_EQ(VxGenMatPrint(&general), 0u);
    EXPECT_EQ(VxBndMatPrint(&band), 0u);
    EXPECT_EQ(VxSymMatPrint(&symmetric), 0u);
    EXPECT_EQ(out.text(), "row[0]:   0.0000 -1234.5679 \n"
                          "row[0]:   0.0000   0.0000 \nrow[1]: 100000.0000 \n"
                          "row[0]:   0.0000 \nrow[1]:   0.0000   0.0000 \n");
    VxSymMatFree(&symmetric);
}

TEST(Storage, BandsOfEveryWidthComeBackFromTheirExpansion)
{
    for (int32_t n = 1; n <= 9; ++n)
        for (int32_t semi = 0; semi < n; ++semi) {
            SCOPED_TRACE(testing::Message() << "n " << n << " semi " << semi);
            OwnBndMat band, copy;
            OwnGenMat full;
            const Matrix before = bandMatrix(n, semi);
            ASSERT_EQ(Full2SymBndMat(&before, n, semi, &band), 0u);
            ASSERT_EQ(VxBndMatCopy(&band, &copy), 0u);
            ASSERT_EQ(SymBnd2FullMat(&copy, n, semi, &full), 0u);
            EXPECT_TRUE(std::equal(full.row[0], full.row[0] + n * n, before.row[0]));
            EXPECT_EQ(copy.row[n - 1 - semi][semi], before.row[n - 1][n - 1 - semi]);
            int32_t width = -1;
            EXPECT_EQ(GetSemiBndWidth(&full, n, &width), 0u);
            EXPECT_EQ(width, semi);
        }
}

/** The semi-bandwidth of a diagonal matrix with two elements set, in two tiles of the symmetry test. */
int32_t widthWith(double upper, double lower)
{
    Matrix m = bandMatrix(40, 0);
    m.row[2][37] = upper;
    m.row[37][2] = lower;
    int32_t width = 99;
    EXPECT_EQ(GetSemiBndWidth(&m, 40, &width), 0u);
    return width;
}

TEST(Storage, SemiBandwidthTellsSymmetryBySign)
{
    const std::tuple<double, double, int32_t> cases[] = {
        {0, 0, 0},         {1, 1, 35},         {0, 1, -35},           {1, 1 + 2e-12, -35},
        {1, 1 + 5e-13, 35}, {9e-13, 9e-13, 0}, {1.1e-12, 1.1e-12, 35},
        {6e-13, -6e-13, 0}, // neither is significant, yet they differ: minus zero is zero
    };
    for (auto [upper, lower, width] : cases)
        EXPECT_EQ(widthWith(upper, lower), width) << upper << ", " << lower;
}

TEST(Storage, RefusedMemoryLeavesNothing)
{
    refusingEachAllocation([] {
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
