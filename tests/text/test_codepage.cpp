#include "text/codepage.h"

#include <random>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/code_page.h"

using namespace vx;

namespace {

constexpr int32_t everyPage[] = {874, 932, 936, 949, 950, 1250, 1252, 65001};

TEST(CodePage, WalkingBackMeetsTheBoundariesOfWalkingForward)
{
    std::mt19937 random(20261121);
    for (int32_t number : everyPage) {
        SCOPED_TRACE(number);
        test::CodePageScope scope(number);
        const text::CodePage &page = text::codePage();
        ASSERT_EQ(page.number, number);
        for (int run = 0; run < 2000; ++run) {
            std::string noise;
            for (size_t n = random() % 12; n > 0; --n)
                noise += static_cast<char>(random() % 4 ? 0x80 + random() % 0x80 : 1 + random() % 0x7F);
            size_t boundary = 0;
            for (size_t at = 0; at <= noise.size(); ++at) {
                while (boundary + static_cast<size_t>(text::charBytes(page, noise.c_str() + boundary)) <= at &&
                       boundary < noise.size())
                    boundary += static_cast<size_t>(text::charBytes(page, noise.c_str() + boundary));
                ASSERT_EQ(text::boundaryBefore(page, noise.c_str(), at), boundary) << "at " << at;
            }
        }
    }
}

TEST(CodePage, NoCharacterReachesPastTheTerminator)
{
    for (int32_t number : everyPage) {
        test::CodePageScope scope(number);
        for (int byte = 0; byte < 256; ++byte) {
            const char lone[] = {static_cast<char>(byte), '\0'};
            EXPECT_EQ(text::charBytes(text::codePage(), lone), 1) << number << ": " << byte;
        }
    }
}

TEST(CodePage, ThePageInForceIsTheOneSetElseTheSystemsElseWestern)
{
    text::setCodePage(936, 1250);
    EXPECT_EQ(text::codePage().number, 936);
    text::setCodePage(0, 1250);
    EXPECT_EQ(text::codePage().number, 1250);
    text::setCodePage(0, 0);
    EXPECT_EQ(text::codePage().number, 1252);
    text::setCodePage(0, -1);
}

}
