#ifndef VX_JOURNAL_H
#define VX_JOURNAL_H

/**
 * @file
 * The session journal.
 */

#include "vx/types.h"

VX_C_BEGIN

VX_API uint32_t VxJnlPathSet(const char *path);
VX_API uint32_t VxJnlPrint(const char *line);
VX_API uint32_t VxJnlExit(void);

VX_C_END

#endif
