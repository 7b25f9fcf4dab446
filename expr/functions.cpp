#include "expr/functions.h"

#include <cstddef>

#include "platform/ascii.h"

namespace vx::expr {

namespace {

// In the order of look-up; the geometric functions, which the host evaluates,
// stand behind the others. "mod" takes one argument (the fraction), "mod2"
// two, and each "...Z" is its plain direction: so formulas have been written.
constexpr Function functions[] = {
    {"sin", 1, 6, 1},        {"cos", 2, 7, 1},        {"tan", 3, 8, 1},       {"asin", 4, 15, 1},
    {"acos", 5, 16, 1},      {"atan", 6, 17, 1},      {"atan2", 7, 18, 2},    {"abs", 8, 31, 1},
    {"log", 9, 19, 1},       {"ln", 10, 20, 1},       {"sqrt", 11, 23, 1},    {"exp", 12, 21, 1},
    {"floor", 13, 32, 1},    {"sinh", 14, 12, 1},     {"cosh", 15, 13, 1},    {"tanh", 16, 14, 1},
    {"mod", 17, 33, 1},      {"mod2", 18, 34, 2},     {"sec", 19, 9, 1},      {"csc", 20, 10, 1},
    {"cot", 21, 11, 1},      {"ceiling", 22, 35, 1},  {"round", 23, 36, 1},   {"max", 24, 37, 2},
    {"min", 25, 38, 2},      {"dec", 26, 39, 2},      {"rad", 27, 41, 1},     {"deg", 28, 40, 1},
    {"num2str", 29, 43, 1},  {"time", 30, 44, 0},     {"date", 31, 45, 0},    {"substr", 32, 46, 3},
    {"vector", 54, 68, 3},   {"point", 55, 69, 3},    {"Dist", 33, 47, 1},    {"ScreenDist", 34, 48, 1},
    {"Sign", 35, 49, 1},     {"Ang", 36, 50, 1},      {"DirXAng", 37, 51, 1}, {"DirYAng", 38, 52, 1},
    {"Pnt", 39, 53, 1},      {"Dir", 40, 54, 1},      {"DirX", 41, 55, 1},    {"DirY", 42, 56, 1},
    {"DirZ", 40, 54, 1},     {"ProfPnt", 43, 57, 1},  {"ProfDir", 44, 58, 1}, {"ProfDirX", 45, 59, 1},
    {"ProfDirY", 46, 60, 1}, {"ProfDirZ", 44, 58, 1}, {"OffPnt", 47, 61, 1},  {"OffDir", 48, 62, 1},
    {"OffDirX", 49, 63, 1},  {"OffDirY", 50, 64, 1},  {"OffDirZ", 48, 62, 1}, {"CenPnt", 51, 65, 1},
    {"CenDir", 52, 66, 1},   {"ArcPnt", 53, 67, 1},
};
constexpr size_t functionCount = sizeof functions / sizeof *functions;
constexpr size_t plainCount = 34;
static_assert(functions[plainCount - 1].op == 69 && functions[plainCount].op == 47);

// For each first letter the first function that has it, and for each function
// the next one: the order of the table is kept, and few names are compared.
constexpr uint8_t last = 0xFF;
struct Chains {
    uint8_t first[26];
    uint8_t next[functionCount];
};

constexpr Chains makeChains()
{
    Chains chains{};
    for (uint8_t &index : chains.first)
        index = last;
    for (size_t i = functionCount; i-- > 0;) {
        uint8_t &head = chains.first[ascii::lower(functions[i].name[0]) - 'a'];
        chains.next[i] = head;
        head = static_cast<uint8_t>(i);
    }
    return chains;
}

constexpr Chains chains = makeChains();

}

const Function *findFunction(std::string_view name, bool extended) noexcept
{
    if (name.empty() || !ascii::isLetter(name[0]))
        return nullptr;
    size_t count = extended ? functionCount : plainCount;
    for (size_t i = chains.first[ascii::lower(name[0]) - 'a']; i < count; i = chains.next[i])
        if (ascii::sameIgnoringCase(name, functions[i].name))
            return &functions[i];
    return nullptr;
}

const char *functionName(int32_t op) noexcept
{
    for (const Function &function : functions)
        if (function.op == op)
            return function.name;
    return nullptr;
}

}
