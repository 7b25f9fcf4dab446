// The example's table from foreign bytes: what is read can be written and
// read again, and what is refused leaves the table as it was. The input is
// taken as the rows of a file, so that its check sum is no hurdle.

#include "fuzz/fuzz.h"
#include "tests/platform/table_bytes.h"

using namespace example;

namespace {

std::string number(uint32_t value)
{
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char>(value >> shift & 255);
    return bytes;
}

/** A file around rows of any content. */
std::string fileWith(std::string rows)
{
    uint32_t sum = 2166136261;
    for (char byte : rows)
        sum = (sum ^ static_cast<unsigned char>(byte)) * 16777619;
    auto size = static_cast<uint32_t>(rows.size());
    rows.resize((rows.size() + 3) / 4 * 4);
    return "VXPT" + number(1) + number(sum) + number(size) + rows;
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const ParameterTable before = {{"kept", "1", "mm", 1}};
    ParameterTable table = before;
    const std::string input(textFrom(0, data, size));
    if (size > 0)
        require(read(input, table) == ReadResult::done || table == before);
    table = before;
    ParameterTable again;
    if (read(fileWith(input), table) != ReadResult::done)
        require(table == before);
    else
        require(read(written(table), again) == ReadResult::done && again.size() == table.size());
    return 0;
}
