#pragma once

// Texts that conversions hand out, for their tests and their fuzz target.

#include <stdexcept>
#include <string>

#include "text/codepage.h"
#include "vx/lang.h"
#include "vx/lang.hpp"
#include "vx/mem.h"

namespace vx::test {

constexpr int32_t everyCodePage[] = {874,  932,  936,  949,  950,  1250, 1251, 1252,
                                     1253, 1254, 1255, 1256, 1257, 1258, 65001};

/** The text of a new block, which is freed. */
template <typename Unit> std::basic_string<Unit> taken(Unit *block)
{
    if (!block)
        throw std::runtime_error("no block");
    std::basic_string<Unit> text = block;
    void *memory = block;
    VxMemFree(&memory);
    return text;
}

/** What a conversion makes of a text: it must end in its only terminator that was put there. */
template <auto convert, typename Unit, typename Text> std::basic_string<Unit> converted(const Text &text)
{
    std::vector<Unit> out;
    if (convert(text.data(), static_cast<int32_t>(text.size()), out) != 0 || out.empty() || out.back() != 0)
        throw std::runtime_error("not converted");
    return {out.data(), out.size() - 1};
}

inline std::u16string wide(std::string_view text)
{
    return converted<VxMultiByteToWideChar, char16_t>(text);
}

inline std::string escaped(std::u16string_view text)
{
    return converted<VxWideCharToMultiByte, char>(text);
}

inline std::u16string parsed(std::u16string_view text)
{
    return converted<VxWideCharParseCIF, char16_t>(text);
}

/** What must hold for any bytes in any code page: escapes lead back, and UTF-8 says what UTF-16 does. */
inline bool conversionsAgree(std::string_view bytes)
{
    const std::u16string units = wide(bytes);
    const std::string text(bytes);
    const std::u16string utf16 = taken(VxStrToUTF16(text.c_str()));
    const std::string utf8 = taken(VxStrToUTF8(text.c_str()));
    taken(VxStrFromUTF8(text.c_str()));
    // What looks like an escape in the wide text is read as one on the way back.
    return wide(escaped(units)) == parsed(units) &&
           (text.find('\\') != text.npos || utf16 == units.c_str()) &&
           taken(VxStrFromUTF8(utf8.c_str())) == taken(VxStrFromUTF16(utf16.c_str())) &&
           taken(VxStrFromCIFStr(text.c_str())) == taken(VxStrFromUTF16(units.c_str()));
}

}
