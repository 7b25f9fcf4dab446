// Lists of recent documents are other programs' files too: a text that is no
// list stays as it is, and in one that is a use is found again and counted.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/os/recent_list.h"

using namespace vx;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string before(reinterpret_cast<const char *>(data), size);
    std::string list = before;
    if (!os::noteRecentUse(list, {"file:///a&b", "app", "'app %u'", "2026-11-21T13:52:01.000000Z"})) {
        if (list != before)
            std::abort();
        return 0;
    }
    std::string again = list;
    if (!os::noteRecentUse(again, {"file:///a&b", "app", "'app %u'", "2026-11-21T13:52:02.000000Z"}))
        std::abort();
    // Numbers may get longer, but no second bookmark is made.
    if (again.size() > list.size() + 64)
        std::abort();
    return 0;
}
