#pragma once

// The host's numbered variables and functions, and the user's folders.

#include <cstddef>
#include <cstdint>

#include "talm/base.h"
#include "talm/config.hpp"

namespace vx::files {

/** Host function `number`, or null when the host has none. */
template <typename Function> Function *hostFunction(int32_t number) noexcept
{
    return reinterpret_cast<Function *>(ApBaseGetFunction(number));
}

/** Host variable `number`, or null when the host has none. */
template <typename Value> const Value *hostVariable(int32_t number) noexcept
{
    return static_cast<const Value *>(ApBaseGetVariable(number));
}

/** Ask host predicate `number`; one that is absent answers no. */
inline bool hostSays(int32_t number) noexcept
{
    auto *predicate = hostFunction<int32_t()>(number);
    return predicate && predicate() != 0;
}

/** The text of a user folder; false, with an empty text, when the user-folder manager has none. */
template <size_t size> bool userFolder(int32_t number, char (&out)[size])
{
    out[0] = '\0';
    IUserFolderMgr *manager = GetIUserFolderMgr();
    if (manager && manager->GetFolder(number, out, static_cast<int32_t>(size)) == 0)
        return true;
    out[0] = '\0';
    return false;
}

}
