#pragma once

#include <string>
#include <string_view>

namespace vx::test {

/** The letters of a printf format's conversions, in their order; "%%" is none. */
inline std::string conversions(std::string_view format)
{
    std::string letters;
    for (size_t at = format.find('%'); at != format.npos; at = format.find('%', at + 1)) {
        at = format.find_first_not_of("0123456789.-+ #*", at + 1);
        if (at == format.npos)
            return letters + "?";
        if (format[at] != '%')
            letters += format[at];
    }
    return letters;
}

}
