#ifndef VX_SYM_H
#define VX_SYM_H

/**
 * @file
 * The symbol table: modules publish functions, tests and session variables by
 * name, and whoever holds only a name finds them again.
 *
 * Tables   Five, independent of each other: addresses, availability, tests,
 *          integer variables, real variables. One name may stand in several.
 *          They are there from the first use until the process ends.
 * Names    Any bytes, compared exactly: "Abc" and "abc" are two symbols. The
 *          table keeps its own copies.
 * Unknown  The functions that report an unknown name file toolkit error 66
 *          with it; the others say nothing.
 * Memory   Where memory for a new entry is short, the standard library's
 *          exception leaves the registering function, and the table is as it
 *          was. Nothing else here throws.
 * Threads  No locks. Modules register on the main thread, usually when they
 *          are loaded; other threads may look names up while nobody registers.
 * Null     A null name registers nothing and is not found, without a report.
 */

#include "vx/types.h"

VX_C_BEGIN

/** A published function or test. Functions of other types are cast to it and back. */
typedef int32_t (*VxSymFcn)(void);

/** The host's hooks in front of the variables: non-zero when the hook has supplied or taken the value. */
typedef int32_t (*VxSymIntGetter)(const char *name, int32_t *value);
typedef int32_t (*VxSymIntSetter)(const char *name, int32_t value);
typedef int32_t (*VxSymDblGetter)(const char *name, double *value);
typedef int32_t (*VxSymDblSetter)(const char *name, double value);

/* ---------------------------------------------------------------- addresses and availability */

/**
 * Publish the address of a function or of a variable; replaces an earlier one
 * of that name. A 32-bit integer or a double published so is read and written
 * by the functions for variables below; it must then outlive its name.
 */
VX_API void VxSymLog(const char *name, void *address);

/** As VxSymLog, for a function. */
VX_API void VxSymLogFcn(const char *name, VxSymFcn function);

/** Make a name available, with attributes that are the application's. The first registration counts. */
VX_API void VxSymLog2(const char *name, uint64_t attributes);

/** Take back a name's address and availability, whichever it has. Its variables and test stay. */
VX_API void VxSymLogOff(const char *name);

/**
 * Look up a name's address and whether it is available. On the first of every
 * eleven calls that find it available, the memory is checked (VxCheckMemory).
 *
 * @param out  receives the address, or null when the name has none
 * @return 0 when the name is available, 2 when not; `out` may have an address either way
 */
VX_API uint32_t VxSymGet(const char *name, void **out);

/** The address published under a name; null and a report when there is none. */
VX_API VxSymFcn VxSymGetFcn(const char *name);

/** As VxSymGetFcn, without a report. */
VX_API VxSymFcn VxSymGetFcnNoErr(const char *name);

/* ---------------------------------------------------------------- tests */

/** Set the test of a name, a function that gives non-zero for passed; replaces an earlier one. */
VX_API void VxSymLogTestFcn(const char *name, VxSymFcn function);

/** The test of a name, or null. */
VX_API VxSymFcn VxSymGetTestFcn(const char *name);

/**
 * Run all tests, in the order in which their names came. Each outcome goes to
 * the event log: "[Pass] name" as type 1, "[Fail] name" as type 5, which a
 * null test gets too. Tests that a test adds wait for the next run.
 */
VX_API void VxSymExecAllTestFcns(void);

/* ---------------------------------------------------------------- variables
 *
 * A variable is read and written in this order: by the hook, when one is
 * installed and answers for the name; in the table of its type; at the address
 * published under the name. The types do not mix: no integer is found as a
 * real.
 */

/** Make a variable, or replace it; `value` is its value and its default. */
VX_API void VxSymLogInt(const char *name, int32_t value);
VX_API void VxSymLogDbl(const char *name, double value);

/** The value of a variable; 0 and a report when the name is unknown. */
VX_API int32_t VxSymGetInt(const char *name);
VX_API double VxSymGetDbl(const char *name);

/** The value of a variable into `out`: 1, or 0 with `out` 0 when the name is unknown. No report. */
VX_API int32_t VxSymTryGetInt(const char *name, int32_t *out);
VX_API int32_t VxSymTryGetDbl(const char *name, double *out);

/** Set a variable, never its default: 1, or 0 and a report when the name is unknown. */
VX_API int32_t VxSymSetInt(const char *name, int32_t value);
VX_API int32_t VxSymSetDbl(const char *name, double value);

/**
 * Give every variable of both tables its default back. No hook is asked, no
 * published address touched.
 *
 * @return 0
 */
VX_API uint32_t VxSymGlobalReset(void);

/** Install a hook, replacing the one before; null removes it. @return the hook given */
VX_API VxSymIntGetter VxSymSetIntGetter(VxSymIntGetter fn);
VX_API VxSymIntSetter VxSymSetIntSetter(VxSymIntSetter fn);
VX_API VxSymDblGetter VxSymSetDblGetter(VxSymDblGetter fn);
VX_API VxSymDblSetter VxSymSetDblSetter(VxSymDblSetter fn);

/* ---------------------------------------------------------------- memory */

/**
 * Warn the user through VxMessage when the process's address space is small
 * (less than 768 MiB in all, toolkit message 124) or runs out (less than
 * 128 MiB left, message 125). A system that tells nothing gives no warning.
 *
 * @return 0
 */
VX_API uint32_t VxCheckMemory(void);

VX_C_END

#endif
