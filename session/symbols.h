#pragma once

// The state behind vx/sym.h.

#include "session/name_table.h"
#include "vx/sym.h"

namespace vx::session {

/** A session variable: its value stands at `bound` when that is set, else in `value`. */
template <typename T> struct Variable {
    T *bound;
    T value;
    T initial;
};

/** The variables of one type and the host's hooks in front of them; a hook may be null. */
template <typename T> struct Variables {
    NameTable<Variable<T>> table;
    int32_t (*getter)(const char *name, T *value) = nullptr;
    int32_t (*setter)(const char *name, T value) = nullptr;
};

struct Symbols {
    NameTable<void *> addresses; ///< of functions and of plain variables
    NameTable<uint64_t> availability;
    NameTable<VxSymFcn> tests;
    Variables<int32_t> ints;
    Variables<double> reals;
    int32_t getsSinceCheck = 0; ///< 0 to 10, of VxSymGet
};

/** The process's symbols. Never destroyed: modules look names up until the very end. */
inline Symbols &symbols()
{
    static Symbols &all = *new Symbols;
    return all;
}

/** Files that `name` is no known symbol. */
void reportUnknownSymbol(const char *name);

}
