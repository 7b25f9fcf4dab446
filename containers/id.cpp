// Identifiers: the generator and the arithmetic.

#include "vx/id.h"

#include <random>

#include "containers/id_state.h"
#include "platform/os/os.h"
#include "vx/mem.h"

namespace vx::containers {

namespace {

IdGenerator generator;

constexpr int64_t epoch = 1'411'970'400; ///< 2014-09-29 06:00:00 UTC, in seconds since 1970
constexpr int32_t perSeeding = 1'000'000;

constexpr int32_t lowBits(int64_t x) noexcept
{
    return static_cast<int32_t>(x & INT32_MAX);
}

constexpr int32_t sum(int32_t x, int32_t y) noexcept
{
    return static_cast<int32_t>(static_cast<uint32_t>(x) + static_cast<uint32_t>(y));
}

constexpr int32_t negated(int32_t x) noexcept
{
    return static_cast<int32_t>(0u - static_cast<uint32_t>(x));
}

void seedFromMemory() noexcept
{
    int64_t used = VgMemUsed + 1;
    generator.a = static_cast<int32_t>(os::wallSeconds() - epoch);
    generator.b = lowBits(used < 0 ? -used : used);
    generator.seeded = true;
    generator.made = 0;
}

/**
 * Wait for the next second and seed from it. How often the loop turned sets
 * apart two processes that start in the same second, and no two seedings of a
 * process fall into one. A clock that is set back ends the wait too.
 */
void seedFromNextSecond() noexcept
{
    int64_t second = os::wallSeconds();
    int32_t turns = 1;
    do {
        if (++turns == perSeeding)
            turns = 1;
    } while (os::wallSeconds() == second);
    // A generator of our own: the host's sequence of rand() stays as it is.
    std::mt19937 random(static_cast<uint32_t>(second + 1));
    generator.a = lowBits(static_cast<int64_t>(random()));
    if (generator.a == 0)
        generator.a = 1;
    generator.b = turns;
    generator.seeded = true;
}

void next() noexcept
{
    if (++generator.made > perSeeding) {
        generator.made = 0;
        generator.seeded = false;
    }
    if (!generator.seeded) {
        seedFromNextSecond();
        return;
    }
    generator.a = sum(generator.a, 1);
    generator.b = sum(generator.b, 1);
}

constexpr bool reserved(int32_t x) noexcept
{
    return x == 0 || x == -1;
}

constexpr int32_t added(int32_t x, int32_t d) noexcept
{
    int32_t result = sum(x, d);
    return reserved(result) ? 2 : result;
}

/** True when an addition has turned a negative identifier's component positive. */
constexpr bool lostSign(int32_t before, int32_t after) noexcept
{
    return before < -1 && after > 0;
}

}

IdGenerator &idGenerator() noexcept
{
    return generator;
}

}

using namespace vx::containers;

uint32_t VxIdNew(VxId *id)
{
    if (!id) {
        seedFromMemory();
        return 0;
    }
    next();
    *id = {generator.a, generator.b, 1};
    return 0;
}

uint32_t VxIdInit(VxId *id)
{
    return VxIdNew(id);
}

void VxIdZero(VxId *id)
{
    if (id)
        *id = {0, 0, 0};
}

void VxIdMinusOne(VxId *id)
{
    if (id)
        *id = {-1, -1, -1};
}

void VxIdNegate(VxId *id)
{
    if (id && id->a > 0)
        id->a = -id->a;
}

int32_t VxIdIsZero(const VxId *id)
{
    return id && id->a == 0 && id->b == 0 && id->c == 0;
}

int32_t VxIdNull(const VxId *id)
{
    return id && reserved(id->a) && reserved(id->b) && reserved(id->c);
}

int32_t VxIdIsNegative(const VxId *id)
{
    return id && id->a < -1;
}

int32_t VxIdSame(const VxId *x, const VxId *y)
{
    return x && y && x->a == y->a && x->b == y->b && x->c == y->c;
}

void VxIdAdd(VxId *id, int32_t da, int32_t db, int32_t dc)
{
    if (!id)
        return;
    VxId old = *id;
    *id = {added(old.a, da), added(old.b, db), added(old.c, dc)};
    if (lostSign(old.a, id->a))
        id->a = negated(id->a);
    // From the first component, not the second: stored identifiers were made so.
    if (lostSign(old.b, id->b))
        id->b = negated(id->a);
    if (lostSign(old.c, id->c))
        id->c = negated(id->c);
}

void VxIdIncr(VxId *id, int32_t d)
{
    VxIdAdd(id, d, d, d);
}

void VxIdCombine(const VxId *x, const VxId *y, VxId *z)
{
    if (!x || !y || !z)
        return;
    VxId other = *y; // z may be y
    *z = *x;
    VxIdAdd(z, other.a, other.b, other.c);
}
