#pragma once

// The command line.

#include <string>
#include <variant>
#include <vector>

namespace vxsh {

enum class Command { console, eval, value, tree, names, replace, derive, units, run };

struct Options {
    Command command = Command::console;
    std::vector<std::string> arguments; ///< as many as the command takes

    std::string unit;              ///< --unit
    std::vector<std::string> sets; ///< --set, in order
    std::string by;                ///< --by
    std::string journal;           ///< --journal
    bool radians = false;          ///< --rad
    bool csv = false;              ///< --csv
};

struct HelpWanted {
    std::string topic; ///< the command it stood behind; empty for the program
};
struct VersionWanted {};
struct UsageError {
    std::string message;
    std::string topic; ///< the command meant, for its usageLine(); empty for the program
};

/**
 * Read the arguments behind the program's name. Options begin with "--" and a
 * letter, stand anywhere and take their value behind "=" or as the next
 * argument; so a formula may begin with a minus sign. Behind "--" nothing is
 * an option. --help and --version win over whatever else stands there.
 */
std::variant<Options, HelpWanted, VersionWanted, UsageError>
readOptions(const std::vector<std::string> &arguments);

/** What --help prints for the program (empty topic) or a command. */
std::string helpText(const std::string &topic);

/** How the command is called, one line, for messages about wrong usage. */
std::string usageLine(const std::string &topic);

}
