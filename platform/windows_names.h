#pragma once

#include <cstdint>

namespace vx::platform {

/** "Windows 7", "Windows Server 2012"; empty for a version without a name of its own. */
const char *windowsName(int32_t version, int32_t minorVersion, bool server) noexcept;

/** "Business Edition" for a product type of GetProductInfo; empty for an unknown one. */
const char *windowsEdition(uint32_t productType) noexcept;

}
