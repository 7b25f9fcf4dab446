#ifndef VX_OPENFILE_H
#define VX_OPENFILE_H

/**
 * @file
 * Streams that are remembered until they are closed.
 */

#include <stdio.h>

#include "vx/types.h"

VX_C_BEGIN

VX_API FILE *f_open(const char *name, const char *mode);
VX_API int32_t f_close(FILE *stream);
VX_API int32_t f_report(void);
VX_API int32_t f_free(void);

VX_C_END

#endif
