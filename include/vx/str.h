#ifndef VX_STR_H
#define VX_STR_H

/**
 * @file
 * Byte strings in the process code page.
 */

#include <stdio.h>
#include <uchar.h>

#include "vx/types.h"

VX_C_BEGIN

typedef struct VxLblFmt {
    char prefix[32];
    char suffix[32];
    int32_t width;
    int32_t precision;
    double value;
} VxLblFmt;

VX_API uint32_t VxStrCpy(char *dst, const char *src, int32_t size);
VX_API uint32_t VxStrCat(char *dst, const char *src, int32_t size);
VX_API const char *VxStrCpyTo(char *dst, const char *src, int32_t stop, int32_t size);
VX_API uint32_t VxStrDup(const char *src, char **copy);
VX_API uint32_t VxStrsCat(char *dst, int32_t size, const char *s1, const char *s2 VX_DEFAULT(0), const char *s3 VX_DEFAULT(0), const char *s4 VX_DEFAULT(0), const char *s5 VX_DEFAULT(0), const char *s6 VX_DEFAULT(0));
VX_API uint32_t VxStrTermAt(char *s, int32_t position, int32_t size);
VX_API uint32_t VxStrTruncAt(char *s, int32_t position);
VX_API int32_t VxStrSizeOkay(const char *s, int32_t size);
VX_API uint32_t VxStrRem(char *s);
VX_API uint32_t VxStrClean(char *s);
VX_API uint32_t VxStrRemNL(char *s);
VX_API uint32_t VxStrDelRtn(char *s);
VX_API uint32_t VxStrProcNewline(char *s);
VX_API uint32_t VxStrRemZero(char *s);
VX_API char *VxStrNextChar(char *p);
VX_API const char *VxStrNextCharCONST(const char *p);
VX_API uint32_t VxStrRemLeadChar(char *s, int32_t ch);
VX_API uint32_t VxStrRemChar(char *s, int32_t ch, int32_t max);
VX_API uint32_t VxStrTruncAtDelim(char *s, int32_t delim);
VX_API uint32_t VxStrTruncEnd(char *s, int32_t n);
VX_API uint32_t VxStrTrunc(char *s, int32_t length);
VX_API uint32_t VxStrReplace(char *s, int32_t from, int32_t to);
VX_API uint32_t VxStrReplaceTabs(char *s, int32_t size, int32_t spaces);
VX_API uint32_t VxStrReplaceSub(char *s, int32_t size, const char *pattern, const char *replacement);
VX_API uint32_t VxStrReplaceSub2(char *s, int32_t size, int32_t position, int32_t length, const char *replacement);
VX_API int32_t VxStrSame(const char *a, const char *b);
VX_API int32_t VxStrSameI(const char *a, const char *b);
VX_API int32_t VxStrcmp(const char *a, const char *b);
VX_API int32_t VxStrcasecmp(const char *a, const char *b);
VX_API int32_t VxStrCmpAlphaNum(const char *a, const char *b);
VX_API int32_t VxStrncmp(const char *a, const char *b, int32_t n);
VX_API char *VxStrchr(char *s, int32_t ch);
VX_API char *VxStrrchr(char *s, int32_t ch);
VX_API const char *VxStrchrCONST(const char *s, int32_t ch);
VX_API const char *VxStrrchrCONST(const char *s, int32_t ch);
VX_API char *VxStrstr(const char *s, const char *sub);
VX_API int32_t VxStrlen(const char *s);
VX_API int32_t VxStrByteLen(const char *s);
VX_API uint32_t VxStrToupper(char *s, int32_t n);
VX_API int32_t VxStrIsSub(const char *part, const char *whole);
VX_API int32_t VxStrIsSub2(const char *whole, const char *part, int32_t ignoreCase);
VX_API char *VxStrFind(const char *s, const char *sub);
VX_API char *VxStrcaseFind(const char *s, const char *sub);
VX_API int32_t VxStrPos(const char *s, const char *sub);
VX_API int32_t VxStrStart(const char *s, const char *part);
VX_API int32_t VxStrAtStart(const char *s, const char *part);
VX_API int32_t VxStrAtEnd(const char *s, const char *part);
VX_API uint32_t VxStrPrefix(const char *s, int32_t delim, char *out, int32_t size);
VX_API uint32_t VxStrPrefix2(const char *s, int32_t delim, char *out, int32_t size);
VX_API uint32_t VxStrSuffix(const char *s, int32_t delim, char *out, int32_t size);
VX_API int32_t VxStrMatch(const char *s, int32_t n, const char *const *table);
VX_API int32_t VxStrCnt(const char *s, int32_t end, int32_t stop);
VX_API int32_t VxStrCharOffset(const char *s, int32_t ch);
VX_API char *VxStrFirstChar(const char *s);
VX_API char *VxStrLastChar(const char *s);
VX_API char *VxStrEndChar(const char *s);
VX_API uint32_t VxStrSort(int32_t n, char *array, int32_t elemSize);
VX_API uint32_t VxStrParseUtil(const char *s, int32_t d1, int32_t d2, int32_t width, char *fields, int32_t *count);
VX_API uint32_t VxStrParse(const char *s, int32_t delim, char *fields, int32_t *count);
VX_API uint32_t VxStrParse80(const char *s, int32_t delim, char *fields, int32_t *count);
VX_API uint32_t VxStrParse128(const char *s, int32_t delim, char *fields, int32_t *count);
VX_API uint32_t VxStrParse256(const char *s, int32_t delim, char *fields, int32_t *count);
VX_API uint32_t VxStrParse80_Clean(const char *s, int32_t delim, char *fields, int32_t *count);
VX_API uint32_t VxStrParse256_Clean(const char *s, int32_t delim, char *fields, int32_t *count);
VX_API uint32_t VxStrParse2(const char *s, int32_t d1, int32_t d2, char *fields, int32_t *count);
VX_API uint32_t VxStrParse2_Clean(const char *s, int32_t d1, int32_t d2, char *fields, int32_t *count);
VX_API uint32_t VxStrParse_Space(const char *s, char *fields, int32_t *count);
VX_API uint32_t VxStrParse3(const char *s, const char *delims, int32_t width, char *fields, int32_t *count);
VX_API uint32_t VxStrParseUid(const char *s, int32_t uid[3]);
VX_API char *VxStrElem(const char *s, int32_t n);
VX_API int32_t VxStrElemIs(const char *s, const char *word, int32_t n);
VX_API char *VxStrNext(const char *p);
VX_API char *VxStrPrev(const char *start, const char *p);
VX_API uint32_t VxStrMovePtr(char **p, int32_t delim);
VX_API uint32_t VxStrMovePtrRev(const char *start, char **p, int32_t delim);
VX_API int32_t VxStrSkipBlank(char **p);
VX_API int32_t VxStrSkipToBlank(char **p);
VX_API int32_t VxStrNextInt(char **p);
VX_API int32_t VxStrNextIntCONST(const char **p);
VX_API int32_t VxStrIsInt(const char *s);
VX_API int32_t VxStrIsConst(const char *s);
VX_API int32_t VxStrType(const char *s);
VX_API char *VxStrDbl(double v);
VX_API char *VxStrInt(int32_t v);
VX_API uint32_t VxStrHexToInt(const char *s, int32_t *v);
VX_API uint32_t VxStrIntToHex(int32_t v, char *buf, int32_t size);
VX_API uint32_t VxStrHexToDbl(const char *s, double *v);
VX_API uint32_t VxStrDblToHex(double v, char *buf, int32_t size);
VX_API int32_t VxStrIsHex(const char *s);
VX_API uint32_t VxStrCvtNum(double v, int32_t width, int32_t precision, char *buf, int32_t size);
VX_API uint32_t VxStrAddVal(char *s, int32_t size, double v);
VX_API uint32_t VxStrPad(char *s, int32_t width);
VX_API uint32_t VxStrPadWith(char *s, int32_t width, int32_t ch);
VX_API uint32_t VxStrCenter(const char *src, int32_t width, char *dst);
VX_API uint32_t VxStrFitToFrmt(const char *src, int32_t mode, int32_t width, int32_t decimals, char *dst);
VX_API uint32_t VxStrFmtLines(const char *text, int32_t width, char *lines, int32_t lineSize, int32_t *count);
VX_API uint32_t VxStrFmtLbl(const VxLblFmt *format, char *buf, int32_t size);
VX_API int32_t VxIsalnum(int32_t ch);
VX_API int32_t VxIsalpha(int32_t ch);
VX_API int32_t VxIsdigit(int32_t ch);
VX_API int32_t VxIsspace(int32_t ch);
VX_API int32_t VxIsprint(int32_t ch);
VX_API int32_t VxStrIsprint(const char *s);
VX_API int32_t VxStrIsBlank(const char *s);
VX_API int32_t VxStrIsBlankN(const char *s, int32_t n);
VX_API int32_t VxStrIsBlankW(const char16_t *s);
VX_API int32_t VxIsCharLead(const char *s, int32_t position);
VX_API int32_t VxIsCharSglByte(const char *s, int32_t position);
VX_API int32_t VxCharDb2Sb(uint8_t lead, uint8_t trail, int32_t *value);
VX_API uint32_t VxSprintf(char *dst, int32_t size, const char *format, ...);
VX_API uint32_t VxPrintf(const char *format, ...);
VX_API uint32_t VxFprintf(FILE *stream, const char *format, ...);
VX_API uint32_t VxStdErrRedirect(const char *file);
VX_API uint32_t VxStdErrRestore(void);

VX_C_END

#endif
