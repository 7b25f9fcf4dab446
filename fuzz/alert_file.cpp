// Alert files of foreign bytes: lines and entries stay within what is promised.

#include <algorithm>
#include <cstdio>

#include "fuzz/fuzz.h"
#include "frame/alert_file.h"

using namespace vx::frame;

namespace {

bool within(std::string_view part, std::string_view whole)
{
    return part.empty() || (part.data() >= whole.data() && &part.back() <= &whole.back());
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    std::FILE *stream = std::tmpfile();
    if (!stream)
        return 0;
    std::fwrite(data, 1, size, stream);
    std::rewind(stream);
    AlertLines lines(stream);
    size_t count = 0;
    for (std::string_view line; lines.next(line); ++count) {
        require(line.size() <= 255 && line.find('\n') == line.npos && line.find('\0') == line.npos);
        for (const char *tag : {"", "[Fr]", "[de]"}) {
            AlertEntry entry;
            if (parseAlertLine(line, tag, entry))
                require(within(entry.text, line));
        }
    }
    auto breaks = static_cast<size_t>(std::count(data, data + size, '\n'));
    require(count == breaks + (data[size - 1] != '\n'));
    std::fclose(stream);
    return 0;
}
