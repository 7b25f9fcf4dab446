// Catalogues of foreign bytes: every text is a line's end, and there are no
// more texts than lines.

#include <algorithm>
#include <cstring>

#include "fuzz/fuzz.h"
#include "frame/catalogue.h"

using namespace vx::frame;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    auto lines = std::count(data, data + size, '\n') + 1;
    for (const char *tag : {"", "[Fr]"}) {
        std::vector<char> bytes(data, data + size);
        bytes.push_back('\0');
        Catalogue catalogue(std::move(bytes), tag);
        require(catalogue.count() <= lines);
        for (int32_t i = 0; i < catalogue.count(); ++i)
            require(*catalogue.text(i) && !std::strchr(catalogue.text(i), '\n'));
        require(!catalogue.text(catalogue.count()));
    }
    return 0;
}
