#pragma once

// Files of the example's table as bytes, for its tests and its fuzz target.

#include <cstdio>
#include <cstdlib>
#include <string>

#include "examples/parameter_table/parameter_table.h"

namespace example {

/** The bytes of a table's file; none when it cannot be written. */
inline std::string written(const ParameterTable &table)
{
    char *bytes = nullptr;
    size_t size = 0;
    std::FILE *file = open_memstream(&bytes, &size);
    const bool done = writeTable(file, table);
    std::fclose(file);
    std::string all(bytes, done ? size : 0);
    std::free(bytes);
    return all;
}

inline ReadResult read(std::string bytes, ParameterTable &table)
{
    std::FILE *file = fmemopen(bytes.data(), bytes.size(), "rb");
    ReadResult result = readTable(file, table);
    std::fclose(file);
    return result;
}

}
