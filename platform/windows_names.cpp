#include "platform/windows_names.h"

namespace vx::platform {

namespace {

struct Version {
    int32_t number, minorNumber;
    const char *desktop, *server;
};

constexpr Version versions[] = {
    {6, 0, "Windows Vista", "Windows Server 2008"},
    {6, 1, "Windows 7", "Windows Server 2008 R2"},
    {6, 2, "Windows 8", "Windows Server 2012"},
    {6, 3, "Windows 8.1", "Windows Server 2012 R2"},
    {10, 0, "Windows 10", "Windows Server 2016 Technical Preview"},
};

struct Edition {
    uint32_t productType;
    const char *name;
};

constexpr Edition editions[] = {
    {0x01, "Ultimate Edition"},
    {0x02, "Home Basic Edition"},
    {0x03, "Home Premium Edition"},
    {0x04, "Enterprise Edition"},
    {0x06, "Business Edition"},
    {0x07, "Standard Server Edition (full installation)"},
    {0x08, "Datacenter Server Edition (full installation)"},
    {0x09, "Small Business Server Edition"},
    {0x0A, "Enterprise Server Edition (full installation)"},
    {0x0B, "Starter Edition"},
    {0x0C, "Datacenter Server Edition (core installation)"},
    {0x0D, "Standard Server Edition (core installation)"},
    {0x0E, "Enterprise Server Edition (core installation)"},
    {0x0F, "Enterprise Server Edition for Itanium-based Systems"},
    {0x11, "Web Server Edition (full installation)"},
    {0x12, "Cluster Server Edition"},
    {0x19, "Small Business Server Premium Edition"},
    {0x1D, "Web Server Edition (core installation)"},
    {0x30, "Professional Edition"},
    {0x65, "Home Edition"},
    {0x79, "Education Edition"},
};

}

const char *windowsName(int32_t version, int32_t minorVersion, bool server) noexcept
{
    for (const Version &known : versions)
        if (known.number == version && known.minorNumber == minorVersion)
            return server ? known.server : known.desktop;
    return "";
}

const char *windowsEdition(uint32_t productType) noexcept
{
    for (const Edition &known : editions)
        if (known.productType == productType)
            return known.name;
    return "";
}

}
