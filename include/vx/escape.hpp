#ifndef VX_ESCAPE_HPP
#define VX_ESCAPE_HPP

/**
 * @file
 * The scope guard around the execution of a command.
 */

#include "vx/escape.h"

namespace VX {

class VX_API CommandRecover {
public:
    CommandRecover();
    CommandRecover(const CommandRecover &other);
    ~CommandRecover() noexcept;
    CommandRecover &operator=(const CommandRecover &other);

    static int32_t gsInCmdStack;
};

}

#endif
