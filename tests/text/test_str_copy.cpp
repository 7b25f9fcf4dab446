#include "vx/str.h"

#include <cstring>

#include <gtest/gtest.h>

#include "tests/support/faults.h"
#include "tests/text/str_model.h"
#include "vx/mem.h"

using namespace vx::test;

namespace {

using StrCopy = OnEveryPage;
INSTANTIATE_TEST_SUITE_P(Pages, StrCopy, testing::Values(932, 936, 949, 950, 1252, 65001));

TEST_P(StrCopy, CopiesAndCutsEndWithAWholeCharacter)
{
    for (int run = 0; run < 300; ++run) {
        const std::string s = anyText(8);
        for (size_t size = 1; size <= s.size() + 2; ++size) {
            SCOPED_TRACE(testing::Message() << "run " << run << ", size " << size);
            const std::string kept = whole(s, size - 1);
            const uint32_t cut = s.size() >= size;

            Buffer copy("old", size);
            ASSERT_EQ(VxStrCpy(copy.data(), s.c_str(), copy.size()), cut);
            ASSERT_EQ(copy.text(), kept);

            const int32_t position = static_cast<int32_t>(size) - 1;
            ASSERT_EQ(edited(s, [&](char *p) { VxStrTruncAt(p, position); }), kept);
            ASSERT_EQ(edited(s, [&](char *p) { VxStrTrunc(p, position); }), kept);

            Buffer full(s, std::max(s.size(), size) + 1);
            ASSERT_EQ(VxStrTermAt(full.data(), position, full.size()), 0u);
            ASSERT_EQ(full.text(), kept);
            const std::string clean = withoutHalves(s);
            for (int32_t last : {position, position + 1}) {
                Buffer filled(clean, size);
                ASSERT_EQ(VxStrTermAt(filled.data(), last, filled.size()), last > position);
                ASSERT_EQ(filled.text(), whole(clean, size - 1));
            }
        }
    }
}

TEST_P(StrCopy, CopyingToACharacterStopsThereOrAtTheBuffersEnd)
{
    for (int run = 0; run < 1000; ++run) {
        SCOPED_TRACE(run);
        const std::string s = anyText(8);
        const std::string stop = anyChar(s);
        const Chars chars = split(s);
        const auto at = std::find(chars.begin(), chars.end(), stop);
        const std::string before = join(chars.begin(), at);
        Buffer out("old", 1 + any(12));
        const char *next = VxStrCpyTo(out.data(), s.c_str(), value(stop), out.size());
        ASSERT_EQ(out.text(), whole(before, static_cast<size_t>(out.size()) - 1));
        const bool reached = at != chars.end() && before.size() < static_cast<size_t>(out.size());
        ASSERT_EQ(next, reached ? s.c_str() + before.size() + stop.size() : nullptr);
    }
}

TEST(StrCopyBytes, ACutClearsTheBytesItPasses)
{
    CodePageScope page(932);
    char s[] = "ab\201@cd";
    VxStrTruncAt(s, 3);
    EXPECT_EQ(std::string(s, sizeof s), std::string("ab\0\0cd\0", 7));
}

TEST(StrCopyBytes, CopyingOntoItselfOrFromBehindKeepsTheText)
{
    char s[16] = "abcdef";
    EXPECT_EQ(VxStrCpy(s, s, 2), 0u);
    EXPECT_STREQ(s, "abcdef");
    EXPECT_EQ(VxStrCpy(s, s + 2, sizeof s), 0u);
    EXPECT_STREQ(s, "cdef");
}

TEST(StrCopyBytes, AnAppendThatDoesNotFitChangesNothing)
{
    for (size_t size : {1u, 3u, 4u, 6u, 7u, 8u}) {
        SCOPED_TRACE(size);
        const bool fits = size >= 7;
        Buffer buffer("abc", size);
        const Buffer before = buffer;
        EXPECT_EQ(VxStrCat(buffer.data(), "def", buffer.size()), !fits);
        if (fits)
            EXPECT_EQ(buffer.text(), "abcdef");
        else
            EXPECT_EQ(buffer, before);
    }
}

TEST(StrCopyBytes, SeveralAppendsStopAtTheFirstThatDoesNotFitOrIsMissing)
{
    char s[8] = "a";
    EXPECT_EQ(VxStrsCat(s, sizeof s, "b", "c", nullptr, "x"), 0u);
    EXPECT_STREQ(s, "abc");
    EXPECT_EQ(VxStrsCat(s, sizeof s, "de", "toolong", "f"), 1u);
    EXPECT_STREQ(s, "abcde");
    EXPECT_EQ(VxStrsCat(s, sizeof s, "", "", "", "", "f", "g"), 0u);
    EXPECT_STREQ(s, "abcdefg");
}

TEST(StrCopyBytes, ASizeIsOkayFromTheLengthItselfOn)
{
    EXPECT_EQ(VxStrSizeOkay("abc", 2), 0);
    EXPECT_EQ(VxStrSizeOkay("abc", 3), 1);
    EXPECT_EQ(VxStrSizeOkay("", 4), 0);
}

TEST(StrCopyBytes, ADuplicateIsTheCallersOrNothing)
{
    refusingEachAllocation([] {
        char *copy = reinterpret_cast<char *>(1);
        if (VxStrDup("abc", &copy) == 0) {
            EXPECT_STREQ(copy, "abc");
            void *block = copy;
            VxMemFree(&block);
        } else {
            EXPECT_EQ(copy, nullptr);
        }
    });
}

}
