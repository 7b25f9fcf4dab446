#ifndef VX_LANG_H
#define VX_LANG_H

/**
 * @file
 * Languages, code pages and encodings.
 *
 * Code page   All text of the toolkit is in one multibyte code page, the
 *             process code page: 874, 932, 936, 949, 950, 1250 to 1258 or
 *             65001 (UTF-8). It is the toolkit's own when one was set, by
 *             VxLangSet or by VX::CodePageSet (vx/lang.hpp), else that of the
 *             user's locale, else 1252. Bytes below 0x80 are ASCII in all of
 *             them. Characters correspond to Unicode as on Windows, private
 *             use rows and reserved bytes included.
 * Language    One row of a fixed table, 0 (none, all texts empty) until set.
 *             A row has a name ("German"), a tag for lines of catalogues
 *             ("[de]"), a suffix for names of files ("_Deu"), a locale that
 *             names the folder of its files ("de_DE"), and for some languages
 *             a code page. The texts fit 32 bytes, tags 9, terminator included.
 * Escape      A character that a code page lacks is written as a backslash,
 *             U, a plus sign and four upper-case hexadecimal digits, one such
 *             group for each UTF-16 code unit: "\U+00E9". Readers also take a
 *             lower-case u and lower-case digits. A backslash before anything
 *             else is an ordinary character.
 * Content     No conversion fails on what a text contains. Bytes that are no
 *             character of the code page are taken as the number that they
 *             are: 0x81 as U+0081, an unassigned pair 0x85 0x9F as U+859F.
 *             Characters that the target code page lacks become escapes, and
 *             so does half of a surrogate pair. A conversion fails only for a
 *             null text and when there is no memory.
 * Threads     VxLangSet, VxLangFromCmd, VxLangFree and VX::CodePageSet belong
 *             to the start and the end of the process, when no other thread
 *             is in the toolkit. All else may be called from any thread.
 *
 * Nothing here files an error, except for refused memory.
 */

#include <uchar.h>

#include "vx/types.h"

VX_C_BEGIN

/* ------------------------------------------------------------------ the language */

/**
 * Set the language, once: until VxLangFree no other can be set. Its code page,
 * if it has one, becomes the process code page.
 *
 * @param locale  the locale of a row of the table, exactly: "en_US". There
 *                must be files for it (VxPathLangExist in vx/path.h).
 * @return 0, or 1 when a language is set already, the locale is empty or in no
 *         row, or it has no files; nothing has changed then
 */
VX_API uint32_t VxLangSet(const char *locale);

/**
 * Set the language that the command line names: the first argument of the form
 * "-lang=xx_YY" or "/lang:xx_YY", argv[0] not looked at.
 *
 * @return what VxLangSet gives, or 1 when no argument names a language
 */
VX_API uint32_t VxLangFromCmd(int32_t argc, char **argv);

/**
 * Go back to no language, so that one may be set again. A code page that came
 * with the language goes too, unless another was set since.
 *
 * @return 0
 */
VX_API uint32_t VxLangFree(void);

/**
 * Name and tag of the language.
 *
 * @param name, tag  filled; either may be null when not wanted
 * @return 0, or 1 when one was cut to its size, or its size is below 1
 */
VX_API uint32_t VxLangGet(char *name, int32_t nameSize, char *tag, int32_t tagSize);

/** Suffix of the language for names of files, "_Deu"; English has none. 1 when cut. */
VX_API uint32_t VxLangString(char *buf, int32_t size);

/** Locale of the language, "de_DE". 1 when cut. */
VX_API uint32_t VxLangGetLocale(char *buf, int32_t size);

/**
 * 1 when `locale` is not the one of the language. The two of simplified
 * Chinese, "zh_CN" and "zh_CHS", do not count as different.
 */
VX_API int32_t VxLangIsChanged(const char *locale);

/**
 * 1 when the language is of a kind.
 *
 * @param kind  "DoubleByte" for Korean, Japanese, the three of Chinese, and
 *              Thai; else the name of a language, exactly, where "Chinese"
 *              and "Chinese-simplified" stand for each other
 */
VX_API int32_t VxLangVerify(const char *kind);

/** Number of the process code page; never 0. */
VX_API int32_t VxLangGetCodePage(void);

/* ------------------------------------------------------------------ whole texts
 *
 * All give a new block with the converted text and its terminator, which the
 * caller frees with VxMemFree, or null for a null text or no memory. A result
 * beyond INT32_MAX bytes counts as no memory.
 *
 * What these read is text without escapes: "\U+00E9" is seven characters to
 * VxStrToUTF8 and VxStrToUTF16, so that paths pass through unharmed. Only
 * VxStrFromCIFStr, and VxMultiByteToWideChar in vx/lang.hpp, read escapes.
 */

/** Code page to UTF-8. The result is well-formed UTF-8, whatever the bytes were. */
VX_API char *VxStrToUTF8(const char *text);

/** UTF-8 to code page, with escapes for what it lacks. */
VX_API char *VxStrFromUTF8(const char *text);

/** Code page to UTF-16. */
VX_API char16_t *VxStrToUTF16(const char *text);

/** UTF-16 to code page, with escapes for what it lacks. */
VX_API char *VxStrFromUTF16(const char16_t *text);

/**
 * Text with escapes to plain text: an escape becomes the character where the
 * code page has it and stays an escape where not; two escapes of a surrogate
 * pair are one character. The text ends at an escape of 0.
 */
VX_API char *VxStrFromCIFStr(const char *text);

/* ------------------------------------------------------------------ code units */

/**
 * The code point of a surrogate pair.
 *
 * @param high, low  0xD800 to 0xDBFF and 0xDC00 to 0xDFFF for a pair
 * @param codePoint  receives the code point, or `high` when they are no pair
 * @return 1 for a pair, else 0
 */
VX_API int32_t VxSurrogateToUTF32(uint32_t high, uint32_t low, uint32_t *codePoint);

VX_C_END

#endif
