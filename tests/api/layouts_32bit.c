/* The records whose layout the heap storage manager keeps, on a 32-bit system; compiled, not run. */

#include <stddef.h>

#include "vx/pool.h"

_Static_assert(sizeof(void *) == 4, "compiled for 32 bits");
_Static_assert(sizeof(VxHsmHead) == 8, "a list head is two words");
_Static_assert(sizeof(VxHsmArea) == 316, "an area entry has 316 bytes");
_Static_assert(offsetof(VxHsmArea, storage) == 272, "34 heads stand before the storage");
_Static_assert(sizeof(VxHpPool) == 20, "a pool record has 20 bytes");
_Static_assert(offsetof(VxHpPool, description) == 16, "the description is the last word");
