/* The records of the interface on a 64-bit system, as other modules' binaries expect them. */

#include <stddef.h>

#include "vx/eval.h"
#include "vx/file.h"
#include "vx/matrix.h"
#include "vx/parse.h"
#include "vx/path.h"
#include "vx/pool.h"
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

AT(VxMat3x4, m, 8);
SIZE(VxMat3x4, 104);
SIZE(VxGenMat, 16);
AT(VxGenMat, row, 8);
SIZE(VxSymMat, 16);
AT(VxSymMat, row, 8);
SIZE(VxBndMat, 16);
AT(VxBndMat, row, 8);

AT(VxPathNode, next, 256);

AT(VxStat, size, 24);
AT(VxStat64, size, 24);

_Static_assert(sizeof(VgVXExt) == 3 && sizeof(VgHKExt) == 3, "stems");
_Static_assert(sizeof(VgHKPrtExt) == 8 && sizeof(VgHKLibExt) == 4, "extensions");
_Static_assert(sizeof(VgCompanyCopyRight) == 512 && sizeof(VgVerNum) == 64, "texts");
_Static_assert(sizeof(VgPathUserFolder) == 260 && sizeof(VgPathTemp) == 260, "folders");
