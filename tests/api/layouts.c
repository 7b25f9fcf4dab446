/* The records of the interface on a 64-bit system, as other modules' binaries expect them. */

#include <stddef.h>

#include "vx/eval.h"
#include "vx/file.h"
#include "vx/graph.h"
#include "vx/id.h"
#include "vx/intset.h"
#include "vx/matrix.h"
#include "vx/parse.h"
#include "vx/path.h"
#include "vx/pool.h"
#include "vx/queue.h"
#include "vx/sort.h"
#include "vx/posix.h"
#include "vx/thread.h"
#include "vx/tools.h"

#define SIZE(type, bytes) _Static_assert(sizeof(type) == (bytes), #type " has " #bytes " bytes")
#define AT(type, member, offset) \
    _Static_assert(offsetof(type, member) == (offset), #type "." #member " stands at " #offset)
#define AT2(type, member, offset, ...) \
    AT(type, member, offset);          \
    AT(type, __VA_ARGS__)
#define AT4(type, member1, offset1, member2, offset2, ...) \
    AT2(type, member1, offset1, member2, offset2);         \
    AT2(type, __VA_ARGS__)

SIZE(VsCnsGenSlot, 24);
AT4(VsCnsGenSlot, kind, 0, value, 8, unit, 16, flag, 20);
SIZE(VsCnsGenOp, 80);
AT2(VsCnsGenOp, argc, 4, slot, 8);

SIZE(VxDimNum, 40);
AT4(VxDimNum, len_exp, 8, ang_exp, 16, mass_exp, 24, factor, 32);

SIZE(VxHsmHead, 8);
SIZE(VxHsmArea, 316);
AT4(VxHsmArea, storage, 272, statistics, 276, index, 300, chunkSize, 304);
AT2(VxHsmArea, inUse, 312, tracked, 313);

SIZE(VxList, 64);
AT4(VxList, layout, 0, count, 8, perPage2, 32, data, 40);
AT(VxList, compare, 56);
SIZE(VxListPages, 32);
AT2(VxListPages, multiplier, 8, shift, 16);
AT(VxListPages, perPage, 20);
SIZE(VxListIter, 40);
AT4(VxListIter, cursor, 8, direction, 16, list, 24, bound, 32);
AT(VxListIterOld, cursor, 8);
AT2(VxLnkNode, next, 8, chainNext, 24);
AT(VxLnkNode, element, 40);
AT(VxBintree, node, 16);
AT(VxQueue, items, 8);
AT2(VxPairTable, pairs, 16, changed, 24);
SIZE(VxPair, 8);
AT(VxIntSet, index, 8);

SIZE(VxGraphNode, 72);
AT4(VxGraphNode, number, 16, low2, 32, val, 40, removed, 56);
AT(VxGraphNode, user, 64);
SIZE(VxGraphEdge, 40);
AT2(VxGraphEdge, region, 12, weight, 24);
AT(VxGraphEdge, removed, 36);
AT(VxGraphRegion, spare, 8);

SIZE(VxId, 12);
SIZE(VxIdEntry, 24);
AT2(VxIdEntry, value, 12, flag, 20);
AT2(VxIdList, entries, 16, sorted, 24);
SIZE(VxLbl, 20);
SIZE(VxDirEnt, 280);
AT(VxDirEnt, name, 19);

AT(VxMat3x4, m, 8);
SIZE(VxMat3x4, 104);
SIZE(VxGenMat, 16);
AT(VxGenMat, row, 8);
SIZE(VxSymMat, 16);
AT(VxSymMat, row, 8);
SIZE(VxBndMat, 16);
AT(VxBndMat, row, 8);

AT(VxPathNode, next, 256);

SIZE(VxThreadPool, 64);
AT4(VxThreadPool, stop, 24, work, 40, stride, 56, workers, 60);
SIZE(VxPoolArg, 16);

AT(VxStat, size, 24);
AT(VxStat64, size, 24);

_Static_assert(sizeof(VgVXExt) == 3 && sizeof(VgHKExt) == 3, "stems");
_Static_assert(sizeof(VgHKPrtExt) == 8 && sizeof(VgHKLibExt) == 4, "extensions");
_Static_assert(sizeof(VgCompanyCopyRight) == 512 && sizeof(VgVerNum) == 64, "texts");
_Static_assert(sizeof(VgPathUserFolder) == 260 && sizeof(VgPathTemp) == 260, "folders");
