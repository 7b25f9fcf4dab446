#include "vx/str.h"

#include <gtest/gtest.h>

namespace {

TEST(StrNulls, NothingToWorkOnIsAFailure)
{
    char kept[8] = "abc";
    int32_t number = 7;
    char *none = nullptr;
    const uint32_t results[] = {
        VxStrCpy(nullptr, "a", 8), VxStrCpy(nullptr, nullptr, 8), VxStrCat(nullptr, "a", 8),
        VxStrCat(kept, nullptr, 8), VxStrDup("a", nullptr), VxStrDup(nullptr, &none),
        VxStrsCat(nullptr, 8, "a"), VxStrsCat(kept, 8, nullptr), VxStrTermAt(nullptr, 0, 8),
        VxStrTruncAt(nullptr, 0), VxStrRem(nullptr), VxStrClean(nullptr), VxStrRemNL(nullptr),
        VxStrDelRtn(nullptr), VxStrProcNewline(nullptr), VxStrRemZero(nullptr),
        VxStrRemLeadChar(nullptr, 'a'), VxStrRemChar(nullptr, 'a', 0), VxStrTruncAtDelim(nullptr, 'a'),
        VxStrTruncEnd(nullptr, 1), VxStrTrunc(nullptr, 1), VxStrReplace(nullptr, 'a', 'b'),
        VxStrReplaceTabs(nullptr, 8, 1), VxStrReplaceSub(nullptr, 8, "a", "b"),
        VxStrReplaceSub(kept, 8, nullptr, "b"), VxStrReplaceSub(kept, 8, "a", nullptr),
        VxStrReplaceSub2(nullptr, 8, 0, 1, "b"), VxStrReplaceSub2(kept, 8, 0, 1, nullptr),
        VxStrToupper(nullptr, 0), VxStrPrefix("a,b", ',', nullptr, 8), VxStrPrefix2("a,b", ',', nullptr, 8),
        VxStrSuffix("a,b", ',', nullptr, 8), VxStrSort(1, nullptr, 8),
        VxStrParseUtil("a", ',', ',', 8, nullptr, &number), VxStrParse3("a", nullptr, 8, kept, &number),
        VxStrParse80_Clean("a", ',', nullptr, nullptr), VxStrParseUid(nullptr, &number),
        VxStrParseUid("1,2,3", nullptr), VxStrMovePtr(nullptr, ','), VxStrMovePtr(&none, ','),
        VxStrMovePtrRev(nullptr, &none, ','), VxStrMovePtrRev("a", nullptr, ','),
        VxStrHexToInt(nullptr, &number), VxStrHexToInt("1", nullptr), VxStrIntToHex(1, nullptr, 9),
        VxStrHexToDbl(nullptr, nullptr), VxStrDblToHex(1, nullptr, 17), VxStrCvtNum(1, 1, 1, nullptr, 8),
        VxStrAddVal(nullptr, 8, 1), VxStrPad(nullptr, 3), VxStrPadWith(nullptr, 3, 'x'),
        VxStrCenter("a", 3, nullptr), VxStrFitToFrmt("a", 0, 3, 0, nullptr),
        VxStrFmtLines("a", 3, nullptr, 8, &number), VxStrFmtLines("a", 3, kept, 8, nullptr),
        VxStrFmtLbl(nullptr, nullptr, 8), VxSprintf(nullptr, 8, "a"), VxPrintf(nullptr),
        VxFprintf(nullptr, "a"), VxFprintf(stdout, nullptr)};
    int at = 0;
    for (uint32_t result : results)
        EXPECT_EQ(result, 1u) << "result " << at++;
    EXPECT_STREQ(kept, "abc");
    EXPECT_EQ(number, 0) << "the number of fields";
}

TEST(StrNulls, AMissingSourceEmptiesTheResult)
{
    auto expectEmptied = [](auto fill) {
        char out[8] = "old";
        fill(out);
        EXPECT_STREQ(out, "");
    };
    expectEmptied([](char *out) { EXPECT_EQ(VxStrCpy(out, nullptr, 8), 1u); });
    expectEmptied([](char *out) { EXPECT_EQ(VxStrCpyTo(out, nullptr, ',', 8), nullptr); });
    expectEmptied([](char *out) { EXPECT_EQ(VxStrPrefix(nullptr, ',', out, 8), 1u); });
    expectEmptied([](char *out) { EXPECT_EQ(VxStrSuffix("abc", ',', out, 8), 1u); });
    expectEmptied([](char *out) { EXPECT_EQ(VxStrCenter(nullptr, 3, out), 1u); });
    expectEmptied([](char *out) { EXPECT_EQ(VxStrFitToFrmt(nullptr, 0, 3, 0, out), 1u); });
    expectEmptied([](char *out) { EXPECT_EQ(VxStrFmtLbl(nullptr, out, 8), 1u); });
    expectEmptied([](char *out) { EXPECT_EQ(VxSprintf(out, 8, nullptr), 1u); });
    EXPECT_STREQ(VxStrElem(nullptr, 1), "");
}

TEST(StrNulls, PredicatesAndCountsOfNothingAreZero)
{
    char *none = nullptr;
    const char *noneConst = nullptr;
    const char *const table[] = {"a"};
    const int32_t results[] = {
        VxStrSizeOkay(nullptr, 8), VxStrSame(nullptr, "a"), VxStrSame(nullptr, nullptr),
        VxStrSameI("A", nullptr), VxStrSameI(nullptr, "a"), VxStrlen(nullptr), VxStrByteLen(nullptr),
        VxStrIsSub(nullptr, "a"), VxStrIsSub("a", nullptr), VxStrIsSub2(nullptr, "a", 1),
        VxStrStart(nullptr, "a"), VxStrStart("a", nullptr), VxStrAtStart(nullptr, "a"),
        VxStrAtStart("a", nullptr), VxStrAtEnd(nullptr, "a"), VxStrAtEnd("a", nullptr),
        VxStrMatch(nullptr, 1, table), VxStrMatch("a", 1, nullptr), VxStrMatch("a", -1, table),
        VxStrCnt(nullptr, ',', ';'), VxStrElemIs(nullptr, "a", 1), VxStrElemIs("a", nullptr, 1),
        VxStrSkipBlank(nullptr), VxStrSkipBlank(&none), VxStrSkipToBlank(nullptr), VxStrSkipToBlank(&none),
        VxStrNextInt(nullptr), VxStrNextInt(&none), VxStrNextIntCONST(nullptr),
        VxStrNextIntCONST(&noneConst), VxStrIsInt(nullptr), VxStrIsConst(nullptr), VxStrType(nullptr),
        VxStrIsHex(nullptr), VxStrIsprint(nullptr), VxStrIsBlank(nullptr), VxStrIsBlankN(nullptr, 1),
        VxStrIsBlankW(nullptr), VxIsCharLead(nullptr, 0), VxIsCharSglByte(nullptr, 0),
        VxCharDb2Sb(0x81, 0x40, nullptr)};
    int at = 0;
    for (int32_t result : results)
        EXPECT_EQ(result, 0) << "result " << at++;
}

TEST(StrNulls, NothingIsFoundInNothing)
{
    const char *results[] = {
        VxStrCpyTo(nullptr, "a", ',', 8), VxStrNextChar(nullptr), VxStrchr(nullptr, 'a'),
        VxStrrchr(nullptr, 'a'), VxStrstr(nullptr, "a"), VxStrstr("a", nullptr), VxStrFind(nullptr, "a"),
        VxStrcaseFind("a", nullptr), VxStrFirstChar(nullptr), VxStrLastChar(nullptr), VxStrEndChar(nullptr),
        VxStrNext(nullptr), VxStrPrev(nullptr, "a"), VxStrPrev("a", nullptr)};
    int at = 0;
    for (const char *result : results)
        EXPECT_EQ(result, nullptr) << "result " << at++;
    EXPECT_EQ(VxStrPos(nullptr, "a"), -1);
    EXPECT_EQ(VxStrCharOffset(nullptr, 'a'), -1);
}

TEST(StrNulls, AMissingTextComesFirst)
{
    for (auto compare : {VxStrcmp, VxStrcasecmp, VxStrCmpAlphaNum}) {
        EXPECT_LT(compare(nullptr, ""), 0);
        EXPECT_GT(compare("", nullptr), 0);
        EXPECT_EQ(compare(nullptr, nullptr), 0);
    }
    EXPECT_LT(VxStrncmp(nullptr, "", 1), 0);
}

TEST(StrNulls, BuffersWithoutRoomAreRefused)
{
    for (int32_t size : {0, -1}) {
        char out[8] = "abc";
        const uint32_t results[] = {
        VxStrCpy(out, "a", size), VxStrCat(out, "a", size), VxStrsCat(out, size, "a"),
        VxStrTermAt(out, 0, size), VxStrReplaceTabs(out, size, 1), VxStrReplaceSub(out, size, "a", "b"),
        VxStrReplaceSub2(out, size, 0, 1, "b"), VxStrPrefix("a,b", ',', out, size),
        VxStrSuffix("a,b", ',', out, size), VxStrIntToHex(1, out, size), VxStrCvtNum(1, 1, 1, out, size),
        VxStrAddVal(out, size, 1), VxSprintf(out, size, "a"), VxStrSort(1, out, size),
        VxStrFitToFrmt("a", 0, size, 0, out), VxStrTruncAt(out, -1), VxStrTruncEnd(out, -1)};
        int at = 0;
        for (uint32_t result : results)
            EXPECT_EQ(result, 1u) << "result " << at++;
        EXPECT_EQ(VxStrCpyTo(out, "a", ',', size), nullptr);
        EXPECT_STREQ(out, "abc");
    }
}

}
