#pragma once

// A part's parameters in a file that every machine reads: how an application
// saves its records with the routines of vx/xdr.h.
//
// The file: a mark, a version, a check sum of the rows, and the rows as a
// count and, for each, name, formula, unit and value.

#include <cstdio>
#include <string>
#include <vector>

namespace example {

struct Parameter {
    std::string name;
    std::string formula;
    std::string unit;
    double value = 0;

    bool operator==(const Parameter &) const = default;
};

using ParameterTable = std::vector<Parameter>;

enum class ReadResult {
    done,
    noTable,      ///< another kind of file
    newerVersion, ///< written by a later version of the application
    damaged       ///< incomplete or altered
};

/** What a user is told. */
const char *textOf(ReadResult result);

/** False when the file cannot be written or the table is larger than one that could be read. */
bool writeTable(std::FILE *file, const ParameterTable &table);

/** On failure `table` is as it was. */
ReadResult readTable(std::FILE *file, ParameterTable &table);

}
