// The standard library's allocations can be refused like the toolkit's own.

#include <cstdlib>
#include <new>

#include "platform/os/fault.h"

namespace {

void *allocate(std::size_t size, std::size_t alignment = 0) noexcept
{
    if (vx::fault::refused(vx::fault::Kind::allocation))
        return nullptr;
    if (alignment)
        return std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
    return std::malloc(size ? size : 1);
}

void *orThrow(void *block)
{
    if (!block)
        throw std::bad_alloc();
    return block;
}

}

void *operator new(std::size_t size)
{
    return orThrow(allocate(size));
}

void *operator new(std::size_t size, const std::nothrow_t &) noexcept
{
    return allocate(size);
}

void *operator new[](std::size_t size)
{
    return orThrow(allocate(size));
}

void *operator new[](std::size_t size, const std::nothrow_t &) noexcept
{
    return allocate(size);
}

void *operator new(std::size_t size, std::align_val_t alignment)
{
    return orThrow(allocate(size, static_cast<std::size_t>(alignment)));
}

void operator delete(void *block) noexcept
{
    std::free(block);
}

void operator delete(void *block, std::size_t) noexcept
{
    std::free(block);
}

void operator delete[](void *block) noexcept
{
    std::free(block);
}

void operator delete[](void *block, std::size_t) noexcept
{
    std::free(block);
}

void operator delete(void *block, std::align_val_t) noexcept
{
    std::free(block);
}

void operator delete(void *block, std::size_t, std::align_val_t) noexcept
{
    std::free(block);
}
