#ifndef VX_STR_H
#define VX_STR_H

/**
 * @file
 * Byte strings in the process code page: copies that know their buffer,
 * trims, searches, comparisons, fields, numbers, layout, character tests and
 * formatted output.
 *
 * Texts        Zero-terminated bytes. Lengths and positions are in bytes and
 *              leave the terminator out, except where "characters" is said;
 *              sizes are those of buffers and count it.
 * Characters   A character has one byte or, in double-byte code pages, two,
 *              in UTF-8 up to four. Nothing here takes a part of a character
 *              for a whole one: a second byte that equals a delimiter, a
 *              blank, a backslash or a letter belongs to its character. A
 *              byte that begins or continues nothing (a stray or torn one)
 *              counts as a character of its own.
 * Arguments    A character is passed as one number: its bytes, the first
 *   `ch`,      most significant ('a', 0x8140 for the two bytes 81 40). A plain
 *   `delim`    char may be passed as it is; its sign is taken off. 0 is no
 *              character and is found nowhere but where said.
 * White space  Blank, tab, line feed, vertical tab, form feed, carriage
 *              return, and the ideographic space of the code page.
 * Cuts         What does not fit is cut at the end of a whole character, the
 *              bytes behind it in the buffer are cleared, and the result is 1.
 *              The destination is always terminated.
 * Results      0, or 1 for failure or a cut. Predicates give 1 or 0,
 *              comparisons a negative number, 0 or a positive one.
 * Null         A null text makes copies and edits fail, predicates and counts
 *              0, finders null or -1. In comparisons it comes before every
 *              text. A null source empties the destination; apart from that a
 *              failure leaves the arguments as they were. Sizes below 1 fail.
 * Overlap      VxStrCpy and VxStrCat take a source inside the destination;
 *              elsewhere what is read must lie apart from what is written.
 * Locale       Never asked: neither the decimal point nor what is a letter
 *              depends on it, only on the code page.
 * Memory       Only VxStrDup allocates. Results in buffers of the library
 *              (VxStrElem, VxStrDbl, VxStrInt) are each thread's own and hold
 *              until its next call of the same function.
 * Threads      Any, on texts that no other thread changes. The code page is
 *              set on the main thread while no other works (vx/lang.h).
 */

#include <stdio.h>
#include <uchar.h>

#include "vx/types.h"

VX_C_BEGIN

/* ------------------------------------------------------------------ copy, append, cut */

/**
 * Copy a text.
 *
 * @param dst   emptied when `src` is null
 * @param size  of `dst`
 * @return 0, also when both are the same pointer, which changes nothing; 1
 *         when the text was cut
 */
VX_API uint32_t VxStrCpy(char *dst, const char *src, int32_t size);

/** Append a text if all of it fits, else leave `dst` as it was and give 1. `size` is that of `dst`. */
VX_API uint32_t VxStrCat(char *dst, const char *src, int32_t size);

/**
 * Copy up to a character, which is not copied.
 *
 * @return the position behind that character in `src`; null when the text or
 *         the buffer ended before it (the copy is then all of the text, or cut)
 */
VX_API const char *VxStrCpyTo(char *dst, const char *src, int32_t stop, int32_t size);

/**
 * Duplicate a text.
 *
 * @param copy  the new text, freed with VxMemFree; null on failure
 * @return 0, or 1 for a null argument or no memory
 */
VX_API uint32_t VxStrDup(const char *src, char **copy);

/**
 * Append up to six texts; the first null behind `s1` ends them.
 *
 * @return 0, or 1 at the first that does not fit; those before it are appended
 */
VX_API uint32_t VxStrsCat(char *dst, int32_t size, const char *s1, const char *s2 VX_DEFAULT(0),
                          const char *s3 VX_DEFAULT(0), const char *s4 VX_DEFAULT(0),
                          const char *s5 VX_DEFAULT(0), const char *s6 VX_DEFAULT(0));

/**
 * Terminate a text at a position, or before it where that tears no character.
 * The buffer need not be terminated before; nothing behind it is looked at.
 *
 * @return 0, or 1 for a position outside the buffer: the text is then cut at
 *         its last byte
 */
VX_API uint32_t VxStrTermAt(char *s, int32_t position, int32_t size);

/**
 * Cut a text at a position, or before it where that tears no character. The
 * bytes passed are cleared. A shorter text stays as it is.
 *
 * @return 0, or 1 for a negative position
 */
VX_API uint32_t VxStrTruncAt(char *s, int32_t position);

/** Keep at most `length` bytes: VxStrTruncAt under the name that callers of lengths look for. */
VX_API uint32_t VxStrTrunc(char *s, int32_t length);

/** Drop the last `n` characters; 1 for a negative number. */
VX_API uint32_t VxStrTruncEnd(char *s, int32_t n);

/** Cut before the first `delim`; a text without one stays as it is, which is no failure. */
VX_API uint32_t VxStrTruncAtDelim(char *s, int32_t delim);

/** 1 for a text that is not empty and not longer than `size`, its terminator not counted. */
VX_API int32_t VxStrSizeOkay(const char *s, int32_t size);

/* ------------------------------------------------------------------ trim and clean, in place */

/** Remove white space from both ends. */
VX_API uint32_t VxStrRem(char *s);

/** Remove all white space. A text of more than 1023 bytes is first cut to these, which gives 1. */
VX_API uint32_t VxStrClean(char *s);

/** Remove all carriage returns and line feeds at the end. */
VX_API uint32_t VxStrRemNL(char *s);

/** Remove every carriage return. */
VX_API uint32_t VxStrDelRtn(char *s);

/** Turn the escapes \\n and \\r\\n, written out as backslashes and letters, into one line feed each. */
VX_API uint32_t VxStrProcNewline(char *s);

/**
 * Remove the zeros at the end of a decimal fraction, and then a bare point:
 * "1.500" is "1.5", "2.0" is "2", ".0" is "0". A text that does not end in a
 * point or a fraction stays, so "100" and "1.5e10" do.
 */
VX_API uint32_t VxStrRemZero(char *s);

/** Remove the characters `ch` at the front. */
VX_API uint32_t VxStrRemLeadChar(char *s, int32_t ch);

/** Remove the first `max` characters `ch`, or all of them for `max` below 1. */
VX_API uint32_t VxStrRemChar(char *s, int32_t ch, int32_t max);

/** Upper-case the first `n` characters, or all for `n` below 1; see VxStrcasecmp for what is upper case. */
VX_API uint32_t VxStrToupper(char *s, int32_t n);

/* ------------------------------------------------------------------ replace, in place */

/**
 * Replace one byte by another wherever it stands as a character of its own.
 *
 * @param to  0 cuts the text at the first
 * @return 0, or 1 when either is more than a byte
 */
VX_API uint32_t VxStrReplace(char *s, int32_t from, int32_t to);

/** Replace each tab by `spaces` blanks (0 removes them); 1 when the text, in `size` bytes, had to be cut. */
VX_API uint32_t VxStrReplaceTabs(char *s, int32_t size, int32_t spaces);

/**
 * Replace every occurrence of a text, from left to right; what was put in is
 * not searched again.
 *
 * The result is built in 1023 bytes. Replacing stops when the next insertion
 * would not fit there, and what follows is kept as far as it fits. A text in
 * which nothing is replaced stays as it is, however long.
 *
 * @param size     of the buffer of `s`
 * @param pattern  an empty one occurs nowhere
 * @return 0, or 1 when an occurrence was left or the result was cut
 */
VX_API uint32_t VxStrReplaceSub(char *s, int32_t size, const char *pattern, const char *replacement);

/**
 * Replace `length` bytes at `position`; of length 0, insert.
 *
 * @return 0; 1 when the result was cut; 1 with nothing changed when the piece
 *         reaches outside the text or tears a character
 */
VX_API uint32_t VxStrReplaceSub2(char *s, int32_t size, int32_t position, int32_t length,
                                 const char *replacement);

/* ------------------------------------------------------------------ compare */

/** 1 for two texts of the same bytes. */
VX_API int32_t VxStrSame(const char *a, const char *b);

/**
 * 1 when every character of the keyword `a` is that of `b` or its upper-case
 * form. One-sided on purpose: "ABC" matches a user's "abc", "abc" no "ABC".
 */
VX_API int32_t VxStrSameI(const char *a, const char *b);

/** Compare by characters as numbers (see the top), so double-byte characters come behind all single ones. */
VX_API int32_t VxStrcmp(const char *a, const char *b);

/** As VxStrcmp, the first `n` characters. */
VX_API int32_t VxStrncmp(const char *a, const char *b, int32_t n);

/**
 * As VxStrcmp, in lower case: that of Latin, Greek, Cyrillic, Armenian and
 * full-width letters as far as the code page has both forms in the same
 * number of bytes.
 */
VX_API int32_t VxStrcasecmp(const char *a, const char *b);

/**
 * Compare in natural order: "file9" before "file10".
 *
 * Runs of digits are compared by value, whatever their length, all else byte
 * by byte. A text that ends first comes first, and a digit before anything
 * else. "a007" and "a7" are equal.
 */
VX_API int32_t VxStrCmpAlphaNum(const char *a, const char *b);

/**
 * Sort records of `elemSize` bytes, each a terminated text, in the order of
 * VxStrcmp. Heap sort in place (J. W. J. Williams, 1964): n log n steps at
 * worst; equal texts may change places.
 */
VX_API uint32_t VxStrSort(int32_t n, char *array, int32_t elemSize);

/* ------------------------------------------------------------------ find */

/** Number of characters. */
VX_API int32_t VxStrlen(const char *s);

/** Number of bytes. */
VX_API int32_t VxStrByteLen(const char *s);

/** The first or last character `ch`, or null; 0 finds the terminator. */
VX_API char *VxStrchr(char *s, int32_t ch);
VX_API char *VxStrrchr(char *s, int32_t ch);
VX_API const char *VxStrchrCONST(const char *s, int32_t ch);
VX_API const char *VxStrrchrCONST(const char *s, int32_t ch);

/** The offset of the first character `ch` in bytes, or -1. */
VX_API int32_t VxStrCharOffset(const char *s, int32_t ch);

/** The first occurrence of `sub`, or null; an empty `sub` is found at once. */
VX_API char *VxStrstr(const char *s, const char *sub);

/** The same, but an empty `sub` occurs nowhere; this holds for all that follow down to VxStrPos. */
VX_API char *VxStrFind(const char *s, const char *sub);

/** VxStrFind without regard to case. */
VX_API char *VxStrcaseFind(const char *s, const char *sub);

/** 1 if `part` occurs in `whole`. */
VX_API int32_t VxStrIsSub(const char *part, const char *whole);

/** The same with the arguments in the order of VxStrFind, and without regard to case if `ignoreCase`. */
VX_API int32_t VxStrIsSub2(const char *whole, const char *part, int32_t ignoreCase);

/** Where `sub` first occurs, from 0; -1 when it does not. */
VX_API int32_t VxStrPos(const char *s, const char *sub);

/** 1 if `s` begins, or ends, with `part`, as every text does with the empty one. */
VX_API int32_t VxStrAtStart(const char *s, const char *part);
VX_API int32_t VxStrAtEnd(const char *s, const char *part);

/** 1 if the first 1023 bytes of `s`, all white space left out, begin with `part`. */
VX_API int32_t VxStrStart(const char *s, const char *part);

/** 1 if `s` begins with one of the `n` texts of a table; nulls in it are passed over. */
VX_API int32_t VxStrMatch(const char *s, int32_t n, const char *const *table);

/** The part before the first `delim`; 1 and an empty result when there is none, 1 when it was cut. */
VX_API uint32_t VxStrPrefix(const char *s, int32_t delim, char *out, int32_t size);

/** The part before the last `delim`, likewise. */
VX_API uint32_t VxStrPrefix2(const char *s, int32_t delim, char *out, int32_t size);

/** The part behind the last `delim`, likewise. */
VX_API uint32_t VxStrSuffix(const char *s, int32_t delim, char *out, int32_t size);

/** Bytes that are not white space before the first character `end` or `stop`, or in all of the text. */
VX_API int32_t VxStrCnt(const char *s, int32_t end, int32_t stop);

/** The first, or last, character that is not white space; null in a blank text. */
VX_API char *VxStrFirstChar(const char *s);
VX_API char *VxStrLastChar(const char *s);

/** The last character, whatever it is; null in an empty text. */
VX_API char *VxStrEndChar(const char *s);

/* ------------------------------------------------------------------ fields
 *
 * A line is split at delimiters into the caller's array: fields of `width`
 * bytes, back to back.
 *
 *   count     on entry the fields that the array has, at least 1; on return
 *             those found
 *   clearing  all fields are cleared first
 *   end       the line ends at its terminator or at a carriage return, or when
 *             the array is full; what follows then is no failure
 *   empty     delimiters side by side make empty fields; a last field counts
 *             only if it is not empty: "a,,b" has three, "a,b," two
 *   cut       a field keeps at most width - 1 bytes; the result is then 1
 *   null      a null line has no fields, which is no failure; a null array, a
 *             width or a count below 1 is one
 */

/** Split at either of two delimiters, which may be the same. */
VX_API uint32_t VxStrParseUtil(const char *s, int32_t d1, int32_t d2, int32_t width, char *fields,
                               int32_t *count);

/** Split at one delimiter into fields of 32, 80, 128 or 256 bytes. */
VX_API uint32_t VxStrParse(const char *s, int32_t delim, char *fields, int32_t *count);
VX_API uint32_t VxStrParse80(const char *s, int32_t delim, char *fields, int32_t *count);
VX_API uint32_t VxStrParse128(const char *s, int32_t delim, char *fields, int32_t *count);
VX_API uint32_t VxStrParse256(const char *s, int32_t delim, char *fields, int32_t *count);

/** The same, and white space removed from both ends of every field. */
VX_API uint32_t VxStrParse80_Clean(const char *s, int32_t delim, char *fields, int32_t *count);
VX_API uint32_t VxStrParse256_Clean(const char *s, int32_t delim, char *fields, int32_t *count);

/** Split at two delimiters into fields of 32 bytes, as they are or trimmed. */
VX_API uint32_t VxStrParse2(const char *s, int32_t d1, int32_t d2, char *fields, int32_t *count);
VX_API uint32_t VxStrParse2_Clean(const char *s, int32_t d1, int32_t d2, char *fields, int32_t *count);

/** Split at every single blank and tab into fields of 32 bytes. */
VX_API uint32_t VxStrParse_Space(const char *s, char *fields, int32_t *count);

/** Split at any character of `delims`. */
VX_API uint32_t VxStrParse3(const char *s, const char *delims, int32_t width, char *fields, int32_t *count);

/**
 * Read three integers with a comma, a colon or white space between them.
 *
 * @return 0, or 1 and `uid` as it was when the text is anything else
 */
VX_API uint32_t VxStrParseUid(const char *s, int32_t uid[3]);

/* ------------------------------------------------------------------ words and steps */

/**
 * The n-th word, from 1: what stands between white space.
 *
 * @return a text of the library, empty for a missing word. A word of 256
 *         bytes or more stops the process with a message: whoever asks for it
 *         would go on with a wrong name.
 */
VX_API char *VxStrElem(const char *s, int32_t n);

/** 1 if the n-th word, of any length, is `word`. */
VX_API int32_t VxStrElemIs(const char *s, const char *word, int32_t n);

/** The first position from `p` on that is not white space, perhaps the terminator. */
VX_API char *VxStrNextChar(char *p);
VX_API const char *VxStrNextCharCONST(const char *p);

/** The next character, or the terminator behind the last one; null at the terminator. */
VX_API char *VxStrNext(const char *p);

/** The character before `p` in the text that begins at `start`; null at the start. */
VX_API char *VxStrPrev(const char *start, const char *p);

/** Move to just behind the next `delim`; 1 and no move when there is none. */
VX_API uint32_t VxStrMovePtr(char **p, int32_t delim);

/** Move back onto the last `delim` before `*p`; another call finds the one before. 1 when there is none. */
VX_API uint32_t VxStrMovePtrRev(const char *start, char **p, int32_t delim);

/** Move over white space, or to the next white space or the terminator: the bytes passed. */
VX_API int32_t VxStrSkipBlank(char **p);
VX_API int32_t VxStrSkipToBlank(char **p);

/**
 * Read the next integer, whatever stands before it, and move behind it. Digits
 * may have one sign directly before them; a number outside 32 bits gives the
 * nearest one. Without another integer 0, and the pointer at the terminator.
 */
VX_API int32_t VxStrNextInt(char **p);
VX_API int32_t VxStrNextIntCONST(const char **p);

/* ------------------------------------------------------------------ numbers */

/** The value of a text of decimal digits only, at most 2147483647; 0 for any other. No predicate. */
VX_API int32_t VxStrIsInt(const char *s);

/** 1 if all of the text is one floating-point constant as strtod reads it, white space before it allowed. */
VX_API int32_t VxStrIsConst(const char *s);

/**
 * 0 for a text that does not begin with a number, 2 if it does and has a "."
 * or an "e" anywhere, else 1. So "15 feet" is 2. "inf" and "nan" are words.
 */
VX_API int32_t VxStrType(const char *s);

/** A number as "%g" writes it; a text of the library. */
VX_API char *VxStrDbl(double v);

/** A number as "%d" writes it; a text of the library. */
VX_API char *VxStrInt(int32_t v);

/** 1 if all of the text is hexadecimal digits, at least one. */
VX_API int32_t VxStrIsHex(const char *s);

/** Read 1 to 8 hexadecimal digits, either case, no prefix; 1 and `v` as it was for anything else. */
VX_API uint32_t VxStrHexToInt(const char *s, int32_t *v);

/** Write 8 upper-case digits; 1 and an empty text when `size` is below 9. */
VX_API uint32_t VxStrIntToHex(int32_t v, char *buf, int32_t size);

/** Read the bits of a double from exactly 16 hexadecimal digits, the most significant first. */
VX_API uint32_t VxStrHexToDbl(const char *s, double *v);

/** Write them; 1 and an empty text when `size` is below 17. */
VX_API uint32_t VxStrDblToHex(double v, char *buf, int32_t size);

/** Write a number as "%*.*f" does; 1 when it was cut. */
VX_API uint32_t VxStrCvtNum(double v, int32_t width, int32_t precision, char *buf, int32_t size);

/** Append a number as "%g" writes it if all of it fits, as VxStrCat. */
VX_API uint32_t VxStrAddVal(char *s, int32_t size, double v);

/* ------------------------------------------------------------------ layout
 *
 * Widths are in bytes, save those of lines; a destination of a width holds
 * width + 1 bytes.
 */

/** Append blanks up to a width; a longer text stays. */
VX_API uint32_t VxStrPad(char *s, int32_t width);

/** The same with another character, of one byte; 1 for any other. */
VX_API uint32_t VxStrPadWith(char *s, int32_t width, int32_t ch);

/** Centre a text between blanks, the odd one behind it; 1 when it was cut to the width. */
VX_API uint32_t VxStrCenter(const char *src, int32_t width, char *dst);

/**
 * Fit a text into a field, at its right end.
 *
 * @param mode      what becomes of a text that is too long
 *                    0      cut to the width
 *                    1      its beginning and "*" in the last place
 *                    2      a number: digits of its fraction beyond `decimals`
 *                           are dropped first, then as mode 1
 *                    other  nothing but "*"
 * @param width     of the field, at least 1
 * @param decimals  negative keeps all, 0 drops the point too
 * @return 0, or 1 when the text was too long
 */
VX_API uint32_t VxStrFitToFrmt(const char *src, int32_t mode, int32_t width, int32_t decimals, char *dst);

/**
 * Break a text into lines of at most `width` characters.
 *
 * A line ends at a line feed (with or without a carriage return before it),
 * else at the last white space, which is dropped, else inside a word.
 *
 * @param lines     array of `*count` lines of `lineSize` bytes; all are cleared first
 * @param count     on return the lines found
 * @return 0, or 1 when a line was cut to its bytes or text was left over
 */
VX_API uint32_t VxStrFmtLines(const char *text, int32_t width, char *lines, int32_t lineSize, int32_t *count);

/** A label: a number with a text before and behind it, which may fill their arrays without a terminator. */
typedef struct VxLblFmt {
    char prefix[32];
    char suffix[32];
    int32_t width;     /**< least bytes of the number; negative for blanks behind it */
    int32_t precision; /**< digits behind the point; negative for 6 */
    double value;
} VxLblFmt;

/** Write a label; 1 when it was cut. */
VX_API uint32_t VxStrFmtLbl(const VxLblFmt *format, char *buf, int32_t size);

/* ------------------------------------------------------------------ what characters are
 *
 * ASCII is classified as in C. Any other character has the nature of its code
 * point: letters are those of all scripts, ideographs among them; digits are
 * ASCII ones only, full-width ones being alphanumeric without being digits;
 * all is printable but controls. A number that is no character of the code
 * page, half of one among them, is nothing.
 */

VX_API int32_t VxIsalnum(int32_t ch);
VX_API int32_t VxIsalpha(int32_t ch);
VX_API int32_t VxIsdigit(int32_t ch);
VX_API int32_t VxIsspace(int32_t ch);
VX_API int32_t VxIsprint(int32_t ch);

/** 1 if every character is printable, as in an empty text. */
VX_API int32_t VxStrIsprint(const char *s);

/** 1 if every character is white space, as in an empty text. */
VX_API int32_t VxStrIsBlank(const char *s);

/** The same for the first `n` characters. */
VX_API int32_t VxStrIsBlankN(const char *s, int32_t n);

/** The same for a wide text. */
VX_API int32_t VxStrIsBlankW(const char16_t *s);

/** 1 if a character begins at `position`, where the terminator is one too; 0 behind the text. */
VX_API int32_t VxIsCharLead(const char *s, int32_t position);

/** 1 if it begins and ends there. */
VX_API int32_t VxIsCharSglByte(const char *s, int32_t position);

/**
 * One number for two bytes.
 *
 * @param value  lead * 256 + trail when the two are one character, else the
 *               first byte
 * @return 1 when they are one character
 */
VX_API int32_t VxCharDb2Sb(uint8_t lead, uint8_t trail, int32_t *value);

/* ------------------------------------------------------------------ print */

/** As snprintf; a cut is no failure here. 1 when nothing came out or formatting failed. */
VX_API uint32_t VxSprintf(char *dst, int32_t size, const char *format, ...);

/** As printf and fprintf; 1 when nothing was written or an error occurred. */
VX_API uint32_t VxPrintf(const char *format, ...);
VX_API uint32_t VxFprintf(FILE *stream, const char *format, ...);

/**
 * Send the process's standard error to a file, which is emptied. Called again
 * it changes the file.
 *
 * @param file  null for "stderr.txt" in VgPathTemp (vx/path.h), or in the
 *              system's folder for temporary files while that is empty
 * @return 0, or 1 with standard error as it was
 */
VX_API uint32_t VxStdErrRedirect(const char *file);

/** Put back what stood before the first redirection; 1 when there was none. */
VX_API uint32_t VxStdErrRestore(void);

VX_C_END

#endif
