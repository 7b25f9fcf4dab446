#pragma once

// The text of an option file: a line each, "key = value".
//
//   blanks (also a carriage return) around key and value do not count
//   the first '=' divides; the value goes to the line's end, quotes and all
//   empty lines and lines that begin with '#' say nothing
//   of equal keys the last counts; keys are compared exactly
//
// A line that is none of these is a fault: it is told, and the others count.

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace talm {

using Options = std::map<std::string, std::string, std::less<>>;

struct OptionFault {
    size_t line; ///< counted from 1
    const char *reason;
};

struct ParsedOptions {
    Options values;
    std::vector<OptionFault> faults;
};

ParsedOptions parseOptions(std::string_view text);

/** Whether a file gives back this option when it is read; blanks around the value are lost. */
bool isStorable(std::string_view key, std::string_view value);

/** The value as a file gives it back: without blanks around it. */
std::string_view trimmed(std::string_view text);

/** `text` with the option changed where it stands, or added at the end; all other lines stay as they are. */
std::string withOption(std::string_view text, std::string_view key, std::string_view value);

}
