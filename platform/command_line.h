#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vx::platform {

/** The words of a command line; its first, the program, has no backslash escapes. */
std::vector<std::string> wordsOfCommandLine(const char *line);

/** The words of the arguments alone. */
std::vector<std::string> wordsOfArguments(const char *text);

/** Words as programs are handed them: their addresses, and a null behind them. */
std::vector<const char *> addressesOf(const std::vector<std::string> &words);

}
