#include "expr/units.h"

#include <cstddef>

#include "platform/ascii.h"
#include "vx/tools.h"

namespace vx::expr {

namespace {

constexpr int32_t length = 2, angle = 3, mass = 4, density = 5, area = 6, volume = 7, inertia = 8;

// Base units are the millimetre, the kilogram and the degree. The factors of
// "dm" and "rad" are what files have been computed with; they stay.
constexpr Unit units[] = {
    {"mic", 0.001, length},
    {"mm", 1.0, length},
    {"cm", 10.0, length},
    {"m", 1000.0, length},
    {"mil", 0.0254, length},
    {"in", 25.4, length},
    {"ft", 304.8, length},
    {"yd", 914.4, length},
    {"dm", 100.4, length},
    {"deg", 1.0, angle},
    {"rad", 57.29, angle},
    {"gm", 0.001, mass},
    {"g", 0.001, mass},
    {"kg", 1.0, mass},
    {"oz", 0.02835, mass},
    {"lb", 0.4536, mass},
    {"mic^2", 1e-6, area},
    {"mm^2", 1.0, area},
    {"cm^2", 100.0, area},
    {"m^2", 1e6, area},
    {"mil^2", 0.00064516, area},
    {"in^2", 645.16, area},
    {"ft^2", 92903.04, area},
    {"yd^2", 836127.36, area},
    {"dm^2", 10000.0, area},
    {"mic^3", 1e-9, volume},
    {"mm^3", 1.0, volume},
    {"cm^3", 1000.0, volume},
    {"m^3", 1e9, volume},
    {"mil^3", 1.6387064e-5, volume},
    {"in^3", 16387.064, volume},
    {"ft^3", 28316846.592, volume},
    {"yd^3", 764554857.984, volume},
    {"dm^3", 1e6, volume},
    {"kg/m^3", 1e-9, density},
    {"kg/mm^3", 1.0, density},
    {"gm/mm^3", 0.001, density},
    {"g/mm^3", 0.001, density},
    {"gm/cm^3", 1e-6, density},
    {"g/cm^3", 1e-6, density},
    {"lb/in^3", 2.767990471e-5, density},
    {"lb/ft^3", 1.601846337e-8, density},
    {"lb/yd^3", 5.932764213e-10, density},
    {"oz/in^3", 1.729994037e-6, density},
    {"oz/ft^3", 1.001153956e-9, density},
    {"oz/yd^3", 3.707977617e-11, density},
    {"kg/mic^3", 1e9, density},
    {"kg/cm^3", 0.001, density},
    {"gm/mic^3", 1e6, density},
    {"g/mic^3", 1e6, density},
    {"gm/m^3", 1e-12, density},
    {"g/m^3", 1e-12, density},
    {"lb/mic^3", 453592370.0, density},
    {"oz/mic^3", 28349523.0, density},
    {"kg/dm^3", 1e-6, density},
    {"g/dm^3", 1e-9, density},
    {"kg*mm^2", 1.0, inertia},
    {"kg*m^2", 1e6, inertia},
    {"gm*mm^2", 0.001, inertia},
    {"g*mm^2", 0.001, inertia},
    {"gm*cm^2", 0.1, inertia},
    {"g*cm^2", 0.1, inertia},
    {"lb*in^2", 292.644576, inertia},
    {"lb*ft^2", 42140.818944, inertia},
    {"lb*yd^2", 379267.370496, inertia},
    {"oz*in^2", 18.290286, inertia},
    {"oz*ft^2", 2633.801184, inertia},
    {"oz*yd^2", 23706.80298, inertia},
    {"kg*dm^2", 10000.0, inertia},
    {"g*dm^2", 10.0, inertia},
};
constexpr size_t unitCount = sizeof units / sizeof *units;

// No name is longer than eight bytes, so that each is one word to compare.
constexpr size_t longestName = 8;

/** The name in lower case as one word; 0 when it is too long to be a unit, or empty. */
constexpr uint64_t packedName(const char *name) noexcept
{
    uint64_t packed = 0;
    for (size_t i = 0; name[i]; ++i) {
        if (i == longestName)
            return 0;
        packed = packed << 8 | static_cast<uint8_t>(ascii::lower(name[i]));
    }
    return packed;
}

constexpr size_t slotCount = 256;

constexpr size_t slotOf(uint64_t packed) noexcept
{
    return static_cast<size_t>(packed * 0x9E3779B97F4A7C15U >> 56);
}

struct Index {
    uint64_t packed[slotCount];
    uint8_t row[slotCount];
};

// Open addressing; rows are entered in order, so that the first of two equal
// names would be the one found.
constexpr Index makeIndex()
{
    Index index{};
    for (size_t row = 0; row < unitCount; ++row) {
        uint64_t packed = packedName(units[row].name);
        size_t slot = slotOf(packed);
        while (index.packed[slot] != 0)
            slot = (slot + 1) % slotCount;
        index.packed[slot] = packed;
        index.row[slot] = static_cast<uint8_t>(row);
    }
    return index;
}

constexpr Index byName = makeIndex();

const Unit *findUnit(const char *name) noexcept
{
    uint64_t packed = packedName(name);
    if (packed == 0)
        return nullptr;
    for (size_t slot = slotOf(packed); byName.packed[slot] != 0; slot = (slot + 1) % slotCount)
        if (byName.packed[slot] == packed)
            return &units[byName.row[slot]];
    return nullptr;
}

}

const Unit *unitAt(int32_t index) noexcept
{
    return index >= 0 && static_cast<size_t>(index) < unitCount ? &units[index] : nullptr;
}

}

int32_t UnitLookup(const char *name, double *factor, int32_t *unitClass)
{
    *factor = 1.0;
    if (unitClass)
        *unitClass = 0;
    if (!name)
        return 0;
    if (VgfGetUnitConv && VgfGetUnitConv(name, factor, unitClass) == 0)
        return 1;
    *factor = 1.0;
    const vx::expr::Unit *unit = vx::expr::findUnit(name);
    if (!unit)
        return 0;
    *factor = unit->factor;
    if (unitClass)
        *unitClass = unit->unitClass;
    return 1;
}
