#include <gmock/gmock.h>

#include "vx/lang.h"
#include "vx/str.h"

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
    bool isNull = false;

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

template <typename Argument> Argument argument(Valid *&next)
{
    Valid &valid = *next++;
    if constexpr (std::is_pointer_v<Argument>)
        return valid.isNull ? nullptr : static_cast<Argument>(valid);
    return valid;
}

template <typename Expected, typename Result, typename... Arguments>
void expectForEachNull(Expected expected, int position, Result (*function)(Arguments...))
{
    constexpr bool isPointer[] = {std::is_pointer_v<Arguments>...};
    for (size_t null = 0; null < sizeof...(Arguments); ++null) {
        Valid valid[sizeof...(Arguments)], *next = valid;
        valid[null].isNull = true;
        std::tuple<Arguments...> arguments{argument<Arguments>(next)...};
        EXPECT_TRUE(!isPointer[null] || std::apply(function, arguments) == expected)
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

TEST(StrNulls, AMissingArgumentIsAFailureWithoutAResult)
{
    expectForNulls(1u, VxStrCpy, VxStrCat, VxStrDup, VxStrTermAt, VxStrTruncAt, VxStrTrunc, VxStrRem,
                   VxStrClean, VxStrRemNL, VxStrDelRtn, VxStrProcNewline, VxStrRemZero, VxStrRemLeadChar,
                   VxStrRemChar, VxStrTruncAtDelim, VxStrTruncEnd, VxStrReplace, VxStrReplaceTabs,
                   VxStrReplaceSub, VxStrReplaceSub2, VxStrToupper, VxStrPrefix, VxStrPrefix2, VxStrSuffix,
                   VxStrSort, VxStrParseUid, VxStrMovePtr, VxStrMovePtrRev, VxStrHexToInt, VxStrIntToHex,
                   VxStrHexToDbl, VxStrDblToHex, VxStrCvtNum, VxStrAddVal, VxStrPad, VxStrPadWith,
                   VxStrCenter, VxStrFitToFrmt, VxStrFmtLbl);
    expectForNulls(0, VxStrSizeOkay, VxStrSame, VxStrSameI, VxStrlen, VxStrByteLen, VxStrIsSub, VxStrIsSub2,
                   VxStrStart, VxStrAtStart, VxStrAtEnd, VxStrMatch, VxStrCnt, VxStrElemIs, VxStrSkipBlank,
                   VxStrSkipToBlank, VxStrNextInt, VxStrNextIntCONST, VxStrIsInt, VxStrIsConst, VxStrType,
                   VxStrIsHex, VxStrIsprint, VxStrIsBlank, VxStrIsBlankN, VxStrIsBlankW, VxIsCharLead,
                   VxIsCharSglByte, VxCharDb2Sb);
    expectForNulls(nullptr, VxStrCpyTo, VxStrNextChar, VxStrchr, VxStrrchr, VxStrstr, VxStrFind,
                   VxStrcaseFind, VxStrFirstChar, VxStrLastChar, VxStrEndChar, VxStrNext, VxStrPrev,
                   VxStrFromCIFStr, VxStrToUTF8, VxStrFromUTF8, VxStrToUTF16, VxStrFromUTF16);
    expectForNulls(-1, VxStrPos, VxStrCharOffset);
    for (auto compare : {VxStrcmp, VxStrcasecmp, VxStrCmpAlphaNum})
        EXPECT_LT(compare(nullptr, ""), 0);
}

TEST(StrNulls, BuffersWithoutRoomAreRefused)
{
    for (int32_t size : {0, -1}) {
        char out[8] = "abc";
        const uint32_t results[] = {
            VxStrCpy(out, "a", size), VxStrCat(out, "a", size), VxStrsCat(out, size, "a"),
            VxStrTermAt(out, 0, size), VxStrReplaceTabs(out, size, 1), VxStrReplaceSub(out, size, "a", "b"),
            VxStrReplaceSub2(out, size, 0, 1, "b"), VxStrPrefix("a,b", ',', out, size),
            VxStrSuffix("a,b", ',', out, size), VxStrIntToHex(1, out, size), VxStrSort(1, out, size),
            VxStrCvtNum(1, 1, 1, out, size), VxStrAddVal(out, size, 1), VxSprintf(out, size, "a"),
            VxStrFitToFrmt("a", 0, size, 0, out), VxStrTruncAt(out, -1), VxStrTruncEnd(out, -1)};
        EXPECT_THAT(results, testing::Each(1u));
        EXPECT_EQ(VxStrCpyTo(out, "a", ',', size), nullptr);
        EXPECT_STREQ(out, "abc");
    }
}

}
