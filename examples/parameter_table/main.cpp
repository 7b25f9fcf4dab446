// Writes a table of parameters to a file and reads it back.
//   example_parameter_table [FILE]

#include <cstdlib>
#include <memory>

#include "examples/parameter_table/parameter_table.h"

using namespace example;

namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE *)>;

int fail(const char *text)
{
    std::fprintf(stderr, "%s\n", text);
    return EXIT_FAILURE;
}

}

int main(int count, char **arguments)
{
    const char *name = count > 1 ? arguments[1] : "plate.table";
    const ParameterTable plate = {
        {"width", "3.in", "mm", 76.2},
        {"height", "2.cm", "mm", 20},
        {"area", "width*height", "mm^2", 1524},
    };

    File written(std::fopen(name, "wb"), std::fclose);
    if (!written || !writeTable(written.get(), plate))
        return fail("The table cannot be written.");
    written.reset();

    ParameterTable read;
    File file(std::fopen(name, "rb"), std::fclose);
    if (!file)
        return fail("The file cannot be opened.");
    if (ReadResult result = readTable(file.get(), read); result != ReadResult::done)
        return fail(textOf(result));
    for (const Parameter &row : read)
        std::printf("%-8s = %-14s %10g %s\n", row.name.c_str(), row.formula.c_str(), row.value,
                    row.unit.c_str());
    return read == plate ? EXIT_SUCCESS : fail("What was read is not what was written.");
}
