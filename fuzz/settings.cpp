// A key file of any content: what is put into it is found again, and nothing
// else in it changes.

#include "fuzz/fuzz.h"
#include "platform/os/key_file.h"

using namespace vx;

namespace {

/** The input up to the next zero byte. */
std::string_view take(std::string_view &input)
{
    std::string_view piece = input.substr(0, input.find('\0'));
    input.remove_prefix(piece.size() < input.size() ? piece.size() + 1 : input.size());
    return piece;
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    std::string_view input = textFrom(0, data, size);
    std::string_view key = take(input);
    std::string_view name = take(input);
    std::string_view value = take(input);
    if (!os::canStandInKeyFile(key, name))
        return 0;
    std::string text(input), before, found, after;
    bool wasThere = os::findSetting(text, "key", "name", before);
    os::putSetting(text, key, name, value);
    require(os::findSetting(text, key, name, found) && found == value);

    os::putSetting(text, key, name, "");
    os::putSetting(text, key, name, value);
    bool isThere = os::findSetting(text, "key", "name", after);
    if (!isThere || after != found)
        require(isThere == wasThere && after == before);
    return 0;
}
