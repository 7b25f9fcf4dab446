// Start of the numerical module.

#include <cmath>
#include <cstdio>

#include "frame/modules.h"
#include "vx/debug.h"
#include "vx/tools.h"

namespace vx::frame {

namespace {

constexpr double radiansPerDegree = 0.017453292519943295;

constinit DegreeTables tables = {};

void fillTables()
{
    for (int32_t degree = 0; degree < wholeDegrees; ++degree) {
        tables.sine[degree] = std::sin(degree * radiansPerDegree);
        tables.cosine[degree] = std::cos(degree * radiansPerDegree);
    }
}

VxMat3x4 identity()
{
    VxMat3x4 out = {};
    out.kind = 1;
    for (int32_t i = 0; i < 3; ++i)
        out.m[i][i] = 1.0;
    return out;
}

}

const DegreeTables &degreeTables()
{
    return tables;
}

}

uint32_t VxMathInit(void *, void *)
{
    if (!vx::frame::loadTexts(vx::frame::modules().math, "Math.ALERT", "Math.MSG"))
        return 1;
    return VxMathGlobal();
}

uint32_t VxMathExit(void)
{
    return 0;
}

uint32_t VxMathGlobal(void)
{
    for (void *&word : VgOptimMarchReactor)
        word = nullptr;
    VgIdentMat3 = vx::frame::identity();
    VgMathDbgFileDesc = stderr;
    VgMathDbgLevel = 0;
    VgMathDbgGroup = 0;
    vx::frame::fillTables();
    ExactInit();
    return 0;
}

int32_t VxMathErrID(void)
{
    return vx::frame::modules().math.errors;
}

int32_t MathMsgID()
{
    return vx::frame::modules().math.messages;
}

void ExactInit(void)
{
    double e = std::ldexp(1.0, -53);
    Vgepsilon = e;
    Vgsplitter = std::ldexp(1.0, 27) + 1.0;
    VgccwerrboundA = (3.0 + 16.0 * e) * e;
    VgccwerrboundB = (2.0 + 12.0 * e) * e;
    VgccwerrboundC = (9.0 + 64.0 * e) * e * e;
    VgccwerrboundD = (3.0 + 8.0 * e) * e;
    VgiccerrboundA = (10.0 + 96.0 * e) * e;
    VgiccerrboundB = (4.0 + 48.0 * e) * e;
    VgiccerrboundC = (44.0 + 576.0 * e) * e * e;
}
