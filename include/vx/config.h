#ifndef VX_CONFIG_H
#define VX_CONFIG_H

/**
 * @file
 * Configuration options: the texts that the host's configuration manager
 * (talm/config.h) keeps, read and written as typed values.
 *
 * Keys      Dotted texts such as "Vx.EscapeCount", handed to the manager as
 *           given; whether their case matters is its affair.
 * Defaults  A VxLaDefault function reads the installation default of the
 *           option instead of the user's value, and else does what the
 *           VxConfig function of its name does, with the same result.
 * Missing   An option without a value, a null key, and a host without a
 *           manager are all the same: missing. Nothing is reported.
 * Cleaned   Where a value is said to be cleaned, all its white space is
 *           removed first, and it is cut at 1023 bytes (VxStrClean).
 * Threads   As safe as the manager is. A thread that reads defaults does not
 *           change what another reads.
 */

#include "vx/types.h"

VX_C_BEGIN

/* ---------------------------------------------------------------- numbers and answers */

/**
 * An option as an integer: 1 for exactly "yes", else the decimal integer at
 * the start of the value, 0 when there is none; out of range, the nearest.
 *
 * @param out  receives the integer, 0 when missing
 * @return 0, or 1 when missing
 */
VX_API uint32_t VxConfigInt(const char *key, int32_t *out);
VX_API uint32_t VxLaDefaultInt(const char *key, int32_t *out);

/** The integer itself, as VxConfigInt reads it; 0 when missing. */
VX_API int32_t VxConfigNum(const char *key);

/** 1 when the cleaned value begins with "y" or "Y", else 0. */
VX_API int32_t VxConfigYes(const char *key);

/** 1 when the cleaned value begins with "n" or "N", else 0. */
VX_API int32_t VxConfigNo(const char *key);

/**
 * An option as an answer.
 *
 * @param out  receives 1 for a cleaned value that begins with "y" or "Y", else 0
 * @return 0, or 1 when missing or when the value begins with neither y nor n
 */
VX_API uint32_t VxConfigYesOrNo(const char *key, int32_t *out);
VX_API uint32_t VxLaDefaultYesOrNo(const char *key, int32_t *out);

/**
 * The number at the start of the value, with "." as decimal point whatever the
 * locale.
 *
 * @param out  receives the number, 0.0 when there is none
 * @return 0, or 1 when missing
 */
VX_API uint32_t VxConfigVal(const char *key, double *out);
VX_API uint32_t VxLaDefaultVal(const char *key, double *out);

/* ---------------------------------------------------------------- texts, choices, colours */

/**
 * The value itself, cut at a character when it does not fit.
 *
 * @param size  of `out` in bytes, at least 1
 * @param out   receives the text, empty when missing
 * @return 0 also for a cut text, or 1 when missing
 */
VX_API uint32_t VxConfigString(const char *key, int32_t size, char *out);
VX_API uint32_t VxLaDefaultString(const char *key, int32_t size, char *out);

/**
 * The cleaned value as exactly three integers between commas, each brought
 * into 0 to 255.
 *
 * @return 0, or 1 when missing or when there are more or fewer; then nothing is written
 */
VX_API uint32_t VxConfigRGB(const char *key, int32_t *r, int32_t *g, int32_t *b);
VX_API uint32_t VxLaDefaultRGB(const char *key, int32_t *r, int32_t *g, int32_t *b);

/**
 * Which of the given choices the cleaned value is, ignoring case.
 *
 * @param list  choices between commas, at most 32 of at most 31 bytes. They
 *              are not cleaned: one with a blank inside matches no value.
 * @return the position from 1 on of the first that matches, or 0
 */
VX_API int32_t VxConfigOpt(const char *key, const char *list);
VX_API int32_t VxLaDefaultOpt(const char *key, const char *list);

/**
 * The number of a colour by its name, ignoring case:
 *
 *   0 ignore     4 goldenrod      8 dark-blue     12 rose           16 black
 *   1 green      5 med-blue       9 violet        13 light-magenta  17 yellow
 *   2 red        6 dark-magenta  10 light-green   14 light-grey     18 med-grey
 *   3 brown      7 dark-grey     11 light-blue    15 white
 *
 * @return the number; for a missing option or no colour's name 16, black, and
 *         from VxLaDefaultColor -1, which tells that there is no default
 */
VX_API int32_t VxConfigColor(const char *key);
VX_API int32_t VxLaDefaultColor(const char *key);

/** As the two above, and 255 for exactly "-FROM PART-": the part itself has the colour. */
VX_API int32_t VxConfigVuColor(const char *key);
VX_API int32_t VxLaDefaultVuColor(const char *key);

/* ---------------------------------------------------------------- writing */

/** Have the manager load its option files 0, 1, 2 and 3, in this order: 0, or 1 at the first that fails. */
VX_API uint32_t VxAcmLoad(void);

/** Set an option's text. @return the manager's status, 0 for done; 1 for null */
VX_API uint32_t VxAcmMod(const char *key, const char *value);

/**
 * Write an integer in the style that the option has: where it holds an answer
 * (VxConfigYesOrNo), "yes" for 1, "no" for 0, and of another number the first
 * three characters; elsewhere the number.
 *
 * @return the manager's status; 1 for a missing option, which stays missing
 */
VX_API uint32_t VxAcmInt(const char *key, int32_t value);

/**
 * Take over a line "key=value" of another source, such as an older options
 * file. Double quotes in the value become blanks, blanks around key and value
 * are dropped, and the key goes through MapIn. A line without "=", key or
 * value is ignored, as are the key Vx.Session and a Vx.PaperSizes whose value
 * contains "VXGL".
 *
 * @param line  taken apart in place
 * @return 0
 */
VX_API uint32_t VxAcmMerge(char *line);

/* ---------------------------------------------------------------- spelling of keys
 *
 * Option files carry the product's prefix (VgHKExt, "Tl"), the toolkit's own
 * keys the prefix "Vx". The result of each function lies in a buffer of its
 * own of 80 bytes, one per thread, until the next call; a longer key is cut.
 */

/** Tl.Grid to Vx.Grid: the product's prefix, with or without a dot behind it, becomes "Vx". */
VX_API char *MapIn(const char *key);

/** Vx.Grid to Tl.Grid: "Vx." becomes the product's prefix and a dot. */
VX_API char *MapOut(const char *key);

VX_C_END

#endif
