#pragma once

// What the modules keep between their start and their end.

#include <cstdint>

namespace vx::frame {

/** Where one module's texts were loaded: ids of vx/err.h and vx/msg.h, -1 while there are none. */
struct ModuleTexts {
    int32_t errors = -1;
    int32_t messages = -1;
};

struct Modules {
    ModuleTexts tools, edition, editionFailure, math, dmgr;
    bool profilerOn = false;
};

Modules &modules();

/**
 * Load a module's alert file and its catalogue; the names are those of the files.
 * @return whether both are there
 */
bool loadTexts(ModuleTexts &module, const char *alertFile, const char *catalogue);

/** Sine and cosine of 0 to 360 degrees, as VxMathGlobal filled them. */
constexpr int32_t wholeDegrees = 361;
struct DegreeTables {
    double sine[wholeDegrees];
    double cosine[wholeDegrees];
};
const DegreeTables &degreeTables();

}

/** Id of the numerical module's catalogue. */
int32_t MathMsgID();
