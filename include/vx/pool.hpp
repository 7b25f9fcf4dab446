#ifndef VX_POOL_HPP
#define VX_POOL_HPP

/**
 * @file
 * What the heap storage manager throws inside itself. None of it leaves the
 * functions of vx/pool.h; hosts may derive their own from it.
 */

#include <cstdint>
#include <exception>
#include <string>

#include "vx/pool.h"

namespace VX {

/** An exception that knows the place where it was thrown. */
class VX_API VxExceptionBase : public std::exception {
public:
    VxExceptionBase(int32_t line, const char *file);
    ~VxExceptionBase() override;

    /** The place, as "file:line". Valid as long as the object. */
    const char *what() const noexcept override;

    int32_t Line;
    std::string File;

private:
    std::string place_;
};

class VX_API VxException : public VxExceptionBase {
public:
    using VxExceptionBase::VxExceptionBase;
    ~VxException() override;
};

}

#endif
