#ifndef VX_ESCAPE_HPP
#define VX_ESCAPE_HPP

/**
 * @file
 * The scope guard around the execution of a command.
 */

#include "vx/escape.h"

namespace VX {

/**
 * Stands on the stack while a command runs, so that an escape raised during a
 * command never outlives it. Guards nest; when the outermost ends, it lowers
 * VgEscapeFlag, clears VgEscapeDisable and calls the VxEscRecover hook. An
 * exception that the hook throws ends there.
 *
 * Commands run on the main thread, and so do their guards.
 */
class VX_API CommandRecover {
public:
    CommandRecover();
    /** A copy is a further guard and counts like one. */
    CommandRecover(const CommandRecover &other);
    ~CommandRecover() noexcept;
    /** Changes nothing: both stay guards. */
    CommandRecover &operator=(const CommandRecover &other);

    /** Guards that stand now. */
    static int32_t gsInCmdStack;
};

}

#endif
