// Catalogues of foreign bytes: every text is a line's end, and there are no
// more texts than lines.

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "frame/catalogue.h"

using namespace vx::frame;

namespace {

void demand(bool holds)
{
    if (!holds)
        std::abort();
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    auto lines = std::count(data, data + size, '\n') + 1;
    for (const char *tag : {"", "[Fr]"}) {
        std::vector<char> bytes(data, data + size);
        bytes.push_back('\0');
        Catalogue catalogue(std::move(bytes), tag);
        demand(catalogue.count() <= lines);
        for (int32_t i = 0; i < catalogue.count(); ++i)
            demand(*catalogue.text(i) && !std::strchr(catalogue.text(i), '\n'));
        demand(!catalogue.text(catalogue.count()));
    }
    return 0;
}
