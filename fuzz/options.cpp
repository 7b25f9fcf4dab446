// Option files: any bytes are read, and a change of them is read back.

#include "fuzz/fuzz.h"
#include "host/option_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    // The first two bytes cut key and value off the rest.
    if (size < 2)
        return 0;
    std::string_view bytes = textFrom(2, data, size);
    std::string_view key = bytes.substr(0, data[0] % 16);
    bytes.remove_prefix(key.size());
    std::string_view value = bytes.substr(0, data[1] % 16);
    bytes.remove_prefix(value.size());

    talm::ParsedOptions before = talm::parseOptions(bytes);
    if (!talm::isStorable(key, value))
        return 0;
    talm::ParsedOptions after = talm::parseOptions(talm::withOption(bytes, key, value));
    before.values.insert_or_assign(std::string(key), std::string(talm::trimmed(value)));
    require(after.values == before.values && after.faults.size() == before.faults.size());
    return 0;
}
