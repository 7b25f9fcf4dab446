// Foreign bytes through every conversion of vx/lang.h, in a code page that the
// first byte picks. What must hold for any bytes is checked, not only survived.

#include "vx/lang.h"
#include "vx/lang.hpp"

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "text/codepage.h"
#include "vx/mem.h"

namespace {

constexpr int32_t pages[] = {874,  932,  936,  949,  950,  1250, 1251, 1252,
                             1253, 1254, 1255, 1256, 1257, 1258, 65001};

void require(bool holds)
{
    if (!holds)
        std::abort();
}

template <typename Unit> std::basic_string<Unit> taken(Unit *block)
{
    require(block);
    std::basic_string<Unit> text = block;
    void *memory = block;
    VxMemFree(&memory);
    return text;
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    vx::text::setCodePage(pages[data[0] % std::size(pages)], 0);
    const int32_t length = static_cast<int32_t>(size - 1);
    const std::string text(reinterpret_cast<const char *>(data + 1), size - 1);

    std::vector<char16_t> wide, parsed, again;
    std::vector<char> escapes;
    // The block itself, behind which the sanitizer sees any byte read.
    require(VxMultiByteToWideChar(reinterpret_cast<const char *>(data + 1), length, wide) == 0);
    const int32_t units = static_cast<int32_t>(wide.size() - 1);
    require(VxWideCharParseCIF(wide.data(), units, parsed) == 0);
    require(VxWideCharToMultiByte(wide.data(), units, escapes) == 0);
    require(VxMultiByteToWideChar(escapes.data(), static_cast<int32_t>(escapes.size() - 1), again) == 0);
    require(again == parsed);

    const std::u16string utf16 = taken(VxStrToUTF16(text.c_str()));
    const std::string utf8 = taken(VxStrToUTF8(text.c_str()));
    require(taken(VxStrFromUTF8(utf8.c_str())) == taken(VxStrFromUTF16(utf16.c_str())));
    taken(VxStrFromUTF8(text.c_str()));
    taken(VxStrFromCIFStr(text.c_str()));
    return 0;
}
