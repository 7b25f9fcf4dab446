/* The records of the heap storage manager and of containers on a 32-bit system; compiled, not run. */

#include <stddef.h>

#include "vx/graph.h"
#include "vx/id.h"
#include "vx/intset.h"
#include "vx/list.h"
#include "vx/pool.h"
#include "vx/queue.h"
#include "vx/sort.h"

_Static_assert(sizeof(void *) == 4, "compiled for 32 bits");
_Static_assert(sizeof(VxHsmHead) == 8, "a list head is two words");
_Static_assert(sizeof(VxHsmArea) == 316, "an area entry has 316 bytes");
_Static_assert(offsetof(VxHsmArea, storage) == 272, "34 heads stand before the storage");
_Static_assert(sizeof(VxHpPool) == 20, "a pool record has 20 bytes");
_Static_assert(offsetof(VxHpPool, description) == 16, "the description is the last word");

#define WORDS(type, words) _Static_assert(sizeof(type) == 4 * (words), #type " has " #words " words")

WORDS(VxList, 12);
WORDS(VxListIter, 5);
WORDS(VxListIterOld, 2);
WORDS(VxLnkNode, 6);
WORDS(VxBintree, 3);
WORDS(VxQueue, 2);
WORDS(VxPairTable, 5);
WORDS(VxIntSet, 2);
WORDS(VxGraph, 4);
WORDS(VxGraphRegion, 2);
WORDS(VxId, 3);
WORDS(VxIdList, 5);
