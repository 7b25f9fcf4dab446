#include "vx/str.h"

#include <functional>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

#include "vx/lang.h"

namespace {

/** What a function can work with, whatever the type of its parameter. */
struct Valid {
    char text[64] = "1,2,3";
    char *place = text;
    const char *constPlace = text;
    char16_t wide[8] = u"1,2,3";
    int32_t numbers[3] = {1, 1, 1};
    double real = 1;
    VxLblFmt label = {};

    operator char *() { return text; }
    operator const char *() { return text; }
    operator char **() { return &place; }
    operator const char **() { return &constPlace; }
    operator const char *const *() { return &constPlace; }
    operator const char16_t *() { return wide; }
    operator int32_t *() { return numbers; }
    operator double *() { return &real; }
    operator const VxLblFmt *() { return &label; }
    operator double() { return real; }
    operator uint8_t() { return 1; }
    operator int32_t() { return 1; }
};

template <typename Argument> Argument argument(Valid &valid, bool isNull)
{
    if constexpr (std::is_pointer_v<Argument>) {
        if (isNull)
            return nullptr;
    }
    return valid;
}

template <typename Result, typename... Arguments, size_t... At>
Result callWithNull(size_t null, Result (*function)(Arguments...), std::index_sequence<At...>)
{
    Valid valid[sizeof...(Arguments)];
    return function(argument<Arguments>(valid[At], At == null)...);
}

template <typename Expected, typename Result, typename... Arguments>
void expectForEachNull(Expected expected, int position, Result (*function)(Arguments...))
{
    constexpr bool isPointer[] = {std::is_pointer_v<Arguments>...};
    for (size_t null = 0; null < sizeof...(Arguments); ++null) {
        if (!isPointer[null])
            continue;
        EXPECT_EQ(callWithNull(null, function, std::index_sequence_for<Arguments...>()), expected)
            << "function " << position << " of the list, argument " << null;
    }
}

/** Each function gives `expected` when any one of its pointers is null. */
template <typename Expected, typename... Functions>
void expectForNulls(Expected expected, Functions... functions)
{
    int position = 0;
    (expectForEachNull(expected, position++, functions), ...);
}

TEST(StrNulls, NothingToWorkOnIsAFailure)
{
    expectForNulls(1u, VxStrCpy, VxStrCat, VxStrDup, VxStrTermAt, VxStrTruncAt, VxStrTrunc, VxStrRem,
                   VxStrClean, VxStrRemNL, VxStrDelRtn, VxStrProcNewline, VxStrRemZero, VxStrRemLeadChar,
                   VxStrRemChar, VxStrTruncAtDelim, VxStrTruncEnd, VxStrReplace, VxStrReplaceTabs,
                   VxStrReplaceSub, VxStrReplaceSub2, VxStrToupper, VxStrPrefix, VxStrPrefix2, VxStrSuffix,
                   VxStrSort, VxStrParseUid, VxStrMovePtr, VxStrMovePtrRev, VxStrHexToInt, VxStrIntToHex,
                   VxStrHexToDbl, VxStrDblToHex, VxStrCvtNum, VxStrAddVal, VxStrPad, VxStrPadWith,
                   VxStrCenter, VxStrFitToFrmt, VxStrFmtLbl);
    char field[8];
    char *none = nullptr;
    int32_t count = 1;
    for (uint32_t result :
         {VxStrsCat(nullptr, 8, "a"), VxStrMovePtr(&none, ','), VxStrParse3("a", nullptr, 8, field, &count),
          VxStrParse80_Clean("a", ',', nullptr, &count), VxStrParse80_Clean("a", ',', nullptr, nullptr),
          VxStrFmtLines("a", 3, nullptr, 8, &count), VxStrFmtLines("a", 3, field, 8, nullptr),
          VxSprintf(nullptr, 8, "a"), VxPrintf(nullptr), VxFprintf(nullptr, "a"), VxFprintf(stdout, nullptr)})
        EXPECT_EQ(result, 1u);
    EXPECT_EQ(count, 0);
    count = 1;
    EXPECT_EQ(VxStrParseUtil(nullptr, ',', ',', 8, field, &count), 0u) << "no line has no fields";
    EXPECT_EQ(count, 0);
}

TEST(StrNulls, NothingHasNoPropertyAndNoLength)
{
    expectForNulls(0, VxStrSizeOkay, VxStrSame, VxStrSameI, VxStrlen, VxStrByteLen, VxStrIsSub, VxStrIsSub2,
                   VxStrStart, VxStrAtStart, VxStrAtEnd, VxStrMatch, VxStrCnt, VxStrElemIs, VxStrSkipBlank,
                   VxStrSkipToBlank, VxStrNextInt, VxStrNextIntCONST, VxStrIsInt, VxStrIsConst, VxStrType,
                   VxStrIsHex, VxStrIsprint, VxStrIsBlank, VxStrIsBlankN, VxStrIsBlankW, VxIsCharLead,
                   VxIsCharSglByte, VxCharDb2Sb);
    char *none = nullptr;
    EXPECT_EQ(VxStrSkipBlank(&none) + VxStrSkipToBlank(&none) + VxStrNextInt(&none), 0);
    EXPECT_STREQ(VxStrElem(nullptr, 1), "");
}

TEST(StrNulls, NothingIsFoundInNothingAndConvertsToNothing)
{
    expectForNulls(nullptr, VxStrCpyTo, VxStrNextChar, VxStrchr, VxStrrchr, VxStrstr, VxStrFind,
                   VxStrcaseFind, VxStrFirstChar, VxStrLastChar, VxStrEndChar, VxStrNext, VxStrPrev,
                   VxStrFromCIFStr, VxStrToUTF8, VxStrFromUTF8, VxStrToUTF16, VxStrFromUTF16);
    expectForNulls(-1, VxStrPos, VxStrCharOffset);
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

TEST(StrNulls, AMissingSourceEmptiesTheResult)
{
    const std::function<bool(char *)> failures[] = {
        [](char *out) { return VxStrCpy(out, nullptr, 8) == 1; },
        [](char *out) { return VxStrCpyTo(out, nullptr, ',', 8) == nullptr; },
        [](char *out) { return VxStrPrefix(nullptr, ',', out, 8) == 1; },
        [](char *out) { return VxStrCenter(nullptr, 3, out) == 1; },
        [](char *out) { return VxStrFitToFrmt(nullptr, 0, 3, 0, out) == 1; },
        [](char *out) { return VxStrFmtLbl(nullptr, out, 8) == 1; },
        [](char *out) { return VxSprintf(out, 8, nullptr) == 1; }};
    for (const auto &fails : failures) {
        char out[8] = "old";
        EXPECT_TRUE(fails(out)) << "failure " << &fails - failures;
        EXPECT_STREQ(out, "") << "failure " << &fails - failures;
    }
}

TEST(StrNulls, BuffersWithoutRoomAreRefused)
{
    for (int32_t size : {0, -1}) {
        char out[8] = "abc";
        int at = 0;
        for (uint32_t result :
             {VxStrCpy(out, "a", size), VxStrCat(out, "a", size), VxStrsCat(out, size, "a"),
              VxStrTermAt(out, 0, size), VxStrReplaceTabs(out, size, 1), VxStrReplaceSub(out, size, "a", "b"),
              VxStrReplaceSub2(out, size, 0, 1, "b"), VxStrPrefix("a,b", ',', out, size),
              VxStrSuffix("a,b", ',', out, size), VxStrIntToHex(1, out, size),
              VxStrCvtNum(1, 1, 1, out, size), VxStrAddVal(out, size, 1), VxSprintf(out, size, "a"),
              VxStrSort(1, out, size), VxStrFitToFrmt("a", 0, size, 0, out), VxStrTruncAt(out, -1),
              VxStrTruncEnd(out, -1)})
            EXPECT_EQ(result, 1u) << "result " << at++;
        EXPECT_EQ(VxStrCpyTo(out, "a", ',', size), nullptr);
        EXPECT_STREQ(out, "abc");
    }
}

}
