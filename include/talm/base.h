#ifndef TALM_BASE_H
#define TALM_BASE_H

/**
 * @file
 * The application's base library: the registry of numbered host variables and
 * functions, and the event log. The implementation beside the toolkit is a
 * complete small host. An application puts a library of its own in its place,
 * with the functions of the first two groups, or fills this one's registry
 * (talm/base.hpp) and chooses where its log goes (the last group).
 *
 * Threads   every function may be called from any thread at any time.
 * Texts     zero-terminated bytes, written as they are; null counts as empty.
 */

#include <stdint.h>

#include "talm/base_export.h"

#if defined(__GNUC__)
#define TALM_PRINTF(formatAt, firstAt) __attribute__((__format__(__printf__, formatAt, firstAt)))
#else
#define TALM_PRINTF(formatAt, firstAt)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---------------------------------------------------------------- registry */

/** The product version, as 100 times the release. Used where host variable 2 is absent. */
extern TALM_BASE_API int32_t TsCadVer;

/** The registry, a HESKET::Talm::Ap::Base, for callers that know no C++. */
TALM_BASE_API void *ApBase(void);

/** The address of a host variable, or null when the host has none of this number. */
TALM_BASE_API void *ApBaseGetVariable(int32_t number);

/** A host function, to be cast to its type, or null when the host has none of this number. */
TALM_BASE_API void *ApBaseGetFunction(int32_t number);

/* ---------------------------------------------------------------- event log
 *
 * A record has a category (who writes: 0 to 63), a level (what it is: 0 to
 * 31) and a text. Levels are kinds rather than a scale: each is switched on
 * or off for itself. All are on at the start, but nothing is written before
 * a sink is chosen (below).
 *
 * A record is one line:
 *
 *     2026-11-21 13:52:01 error Tools: Unable to delete the file \tmp\a.
 *
 * the local time, the level's label, the source and the text. Inside a
 * section (EsEnter to EsLeave) the text is indented by two blanks a section.
 * A text of several lines goes on in lines that begin with blanks; other
 * control characters become "?".
 *
 * Formats are those of printf without "%n"; numbers look as in the C locale
 * whatever the process's is. Pass foreign text through "%s".
 */

enum {
    EsLevelControl = 0,
    EsLevelInformation = 1,
    EsLevelWarning = 3,
    EsLevelError = 4,
    EsLevelFailure = 5, /**< a request that was refused, a test that failed */
    EsLevelTrace = 8,   /**< steps of a start */
    EsLevelSystem = 9,  /**< a call of the operating system that failed */
    EsLevels = 32
};

enum {
    EsCategoryGeneral = 0,
    EsCategoryTools = 6, /**< the toolkit */
    EsCategories = 64
};

/** 1 while a sink is chosen, so that a caller may spare itself making a text that nobody reads. */
TALM_BASE_API int32_t EsIsEnabled(void);

/** 1 when the level is switched on in the category; 0 also for numbers out of range. */
TALM_BASE_API int32_t EsCheck(int32_t level, int32_t category);

/**
 * Begin a section of this thread's records: they are indented under `text`.
 * The heading is written with the section's first record, so that an empty
 * section leaves no trace. A record that only repeats, further in, the
 * thread's last one is left out: callers note a failure plainly and again in
 * a section of its own. An empty text indents without a heading.
 */
TALM_BASE_API void EsEnter(int32_t level, const char *text);

/** End this thread's innermost section; without one nothing happens. */
TALM_BASE_API void EsLeave(int32_t level);

/** Write a record whose kind is `type`, a level. */
TALM_BASE_API void EsPut(int32_t category, int32_t type, const char *format, ...) TALM_PRINTF(3, 4);

/** Write a record. */
TALM_BASE_API void EsLog(int32_t category, int32_t level, const char *format, ...) TALM_PRINTF(3, 4);

/** Write a record under a name of at most 63 bytes: "Tools" is category 6, all others are category 0. */
TALM_BASE_API void EsLogGeneral(const char *source, int32_t level, const char *format, ...)
    TALM_PRINTF(3, 4);

/**
 * A host may show records in a form, a named window of its log. 1 while it
 * has one; then a text goes to the form's field with EsControlGetField(), and
 * EsLogControl() writes that text as a record under the form's name. The
 * field is the calling thread's.
 */
TALM_BASE_API int32_t EsControlHasForm(void);
TALM_BASE_API void EsControlGetField(const char *format, ...) TALM_PRINTF(1, 2);
TALM_BASE_API void EsLogControl(int32_t category, int32_t level);

/** What a line shows for a level ("error") and for a category ("Tools"): never null, never freed. */
TALM_BASE_API const char *EsGeneralGetLabel(int32_t level);
TALM_BASE_API const char *EsGeneralGetName(int32_t category);

/** The pending errors were shown: what was written reaches its files now. */
TALM_BASE_API void EsReport(void);

/* ---------------------------------------------------------------- where the log goes
 *
 * Functions of this implementation, for the application. Sinks are
 * independent of each other: a record goes to each that is chosen.
 */

/** One record as a call-back gets it; texts are valid until the call-back returns. */
typedef struct EsRecord {
    int64_t number;  /**< counts the records of the process from 1 */
    int64_t seconds; /**< since 1970-01-01 00:00 UTC */
    int32_t category;
    int32_t level;
    int32_t depth; /**< open sections of the thread, 0 outside */
    const char *source;
    const char *text; /**< without time, label, source and indentation */
    const char *line; /**< as the other sinks write it, without the line break */
} EsRecord;

typedef void (*EsSinkFn)(void *context, const EsRecord *record);

/** Write to standard error, or no longer (`on` 0). */
TALM_BASE_API void EsSinkStandardError(int32_t on);

/**
 * Write to the end of a file, which is made when missing; each record reaches
 * the system at once. Null or empty for no file.
 *
 * @param path  a name as the system takes it
 * @return 0, or 1 when the file cannot be opened; the log then goes where it went before
 */
TALM_BASE_API int32_t EsSinkFile(const char *path);

/**
 * Hand each record to a function; null for none. It runs on the thread that
 * logs, with no lock held, perhaps on two threads at once; record numbers
 * tell the order. It may log: such records go to the other sinks only.
 *
 * When this returns, no other thread is inside the function that was
 * installed before, unless this is called from inside a call-back itself.
 */
TALM_BASE_API void EsSinkCallback(EsSinkFn function, void *context);

/** Switch a level on or off in a category; -1 stands for all levels or all categories. */
TALM_BASE_API void EsSetLevel(int32_t category, int32_t level, int32_t on);

/** Give the log a form of this name, at most 63 bytes; null or empty takes it away. */
TALM_BASE_API void EsControlSetForm(const char *name);

#ifdef __cplusplus
}
#endif

#endif
