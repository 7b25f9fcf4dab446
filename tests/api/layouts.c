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

SIZE(VsCnsGenSlot, 24);
AT(VsCnsGenSlot, kind, 0);
AT(VsCnsGenSlot, value, 8);
AT(VsCnsGenSlot, unit, 16);
AT(VsCnsGenSlot, flag, 20);
SIZE(VsCnsGenOp, 80);
AT(VsCnsGenOp, argc, 4);
AT(VsCnsGenOp, slot, 8);

SIZE(VxDimNum, 40);
AT(VxDimNum, len_exp, 8);
AT(VxDimNum, ang_exp, 16);
AT(VxDimNum, mass_exp, 24);
AT(VxDimNum, factor, 32);

SIZE(VxHsmHead, 8);
SIZE(VxHsmArea, 316);
AT(VxHsmArea, storage, 272);
AT(VxHsmArea, statistics, 276);
AT(VxHsmArea, index, 300);
AT(VxHsmArea, chunkSize, 304);
AT(VxHsmArea, inUse, 312);
AT(VxHsmArea, tracked, 313);

SIZE(VxList, 64);
AT(VxList, layout, 0);
AT(VxList, count, 8);
AT(VxList, perPage2, 32);
AT(VxList, data, 40);
AT(VxList, compare, 56);
SIZE(VxListPages, 32);
AT(VxListPages, multiplier, 8);
AT(VxListPages, shift, 16);
AT(VxListPages, perPage, 20);
SIZE(VxListIter, 40);
AT(VxListIter, cursor, 8);
AT(VxListIter, direction, 16);
AT(VxListIter, list, 24);
AT(VxListIter, bound, 32);
AT(VxListIterOld, cursor, 8);
AT(VxLnkNode, next, 8);
AT(VxLnkNode, chainNext, 24);
AT(VxLnkNode, element, 40);
AT(VxBintree, node, 16);
AT(VxQueue, items, 8);
AT(VxPairTable, pairs, 16);
AT(VxPairTable, changed, 24);
SIZE(VxPair, 8);
AT(VxIntSet, index, 8);

SIZE(VxGraphNode, 72);
AT(VxGraphNode, number, 16);
AT(VxGraphNode, low2, 32);
AT(VxGraphNode, val, 40);
AT(VxGraphNode, removed, 56);
AT(VxGraphNode, user, 64);
SIZE(VxGraphEdge, 40);
AT(VxGraphEdge, region, 12);
AT(VxGraphEdge, weight, 24);
AT(VxGraphEdge, removed, 36);
AT(VxGraphRegion, spare, 8);

SIZE(VxId, 12);
SIZE(VxIdEntry, 24);
AT(VxIdEntry, value, 12);
AT(VxIdEntry, flag, 20);
AT(VxIdList, entries, 16);
AT(VxIdList, sorted, 24);
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
AT(VxThreadPool, stop, 24);
AT(VxThreadPool, work, 40);
AT(VxThreadPool, stride, 56);
AT(VxThreadPool, workers, 60);
SIZE(VxPoolArg, 16);

AT(VxStat, size, 24);
AT(VxStat64, size, 24);

_Static_assert(sizeof(VgVXExt) == 3 && sizeof(VgHKExt) == 3, "stems");
_Static_assert(sizeof(VgHKPrtExt) == 8 && sizeof(VgHKLibExt) == 4, "extensions");
_Static_assert(sizeof(VgCompanyCopyRight) == 512 && sizeof(VgVerNum) == 64, "texts");
_Static_assert(sizeof(VgPathUserFolder) == 260 && sizeof(VgPathTemp) == 260, "folders");
