// Lists of recent documents are other programs' files too: a text that is no
// list stays as it is, and in one that is a use is found again and counted.

#include "fuzz/fuzz.h"
#include "platform/os/recent_list.h"

using namespace vx;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    auto use = [](std::string &list, const char *time) {
        return os::noteRecentUse(list, {"file:///a&b", "app", "'app %u'", time});
    };
    const std::string before(textFrom(0, data, size));
    std::string once = before;
    if (!use(once, "2026-11-21T13:52:01.000000Z")) {
        require(once == before);
        return 0;
    }
    std::string twice = once;
    require(use(twice, "2026-11-21T13:52:02.000000Z"));
    // Numbers may get longer, but no second bookmark is made.
    require(twice.size() <= once.size() + 64);
    return 0;
}
