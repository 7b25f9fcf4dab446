#include "tools/vxsh/options.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace vxsh {

namespace {

enum Flag : unsigned { unit = 1, set = 2, by = 4, journal = 8, radians = 16, csv = 32 };

struct CommandRow {
    std::string_view name;
    Command command;
    size_t arguments;
    unsigned allowed;
    std::string_view missing; ///< what to say when an argument is missing
};

constexpr CommandRow commands[] = {
    {"eval", Command::eval, 1, unit | set | radians, "the formula is missing"},
    {"value", Command::value, 1, set | radians, "the formula is missing"},
    {"tree", Command::tree, 1, 0, "the formula is missing"},
    {"names", Command::names, 1, 0, "the formula is missing"},
    {"replace", Command::replace, 3, 0, "a name, a text and a formula are needed"},
    {"derive", Command::derive, 1, by | set, "the formula is missing"},
    {"units", Command::units, 0, 0, ""},
    {"run", Command::run, 1, csv | journal | radians, "the parameter file is missing"},
};

constexpr CommandRow console{"", Command::console, 0, radians, ""};

struct OptionRow {
    std::string_view name;
    Flag flag;
    bool takesValue;
};

constexpr OptionRow optionRows[] = {
    {"--unit", unit, true},       {"--set", set, true},      {"--by", by, true},
    {"--journal", journal, true}, {"--rad", radians, false}, {"--csv", csv, false},
};

const CommandRow *findCommand(std::string_view name)
{
    auto row =
        std::find_if(std::begin(commands), std::end(commands), [&](auto &c) { return c.name == name; });
    return row == std::end(commands) ? nullptr : row;
}

const OptionRow *findOption(std::string_view name)
{
    auto row =
        std::find_if(std::begin(optionRows), std::end(optionRows), [&](auto &o) { return o.name == name; });
    return row == std::end(optionRows) ? nullptr : row;
}

bool takesOnlyFormula(const CommandRow &row)
{
    return row.arguments == 1 && row.command != Command::run;
}

std::string quoted(std::string_view text)
{
    return "'" + std::string(text) + "'";
}

bool isOption(std::string_view argument)
{
    if (argument.size() < 3 || !argument.starts_with("--"))
        return false;
    char first = static_cast<char>(argument[2] | 0x20);
    return first >= 'a' && first <= 'z';
}

/** What is wrong with the command line, or nothing. */
using Wrong = std::optional<std::string>;

class Reader {
public:
    explicit Reader(const std::vector<std::string> &arguments) : arguments_(arguments) {}

    Wrong read()
    {
        for (at_ = 0; at_ < arguments_.size(); ++at_) {
            const std::string &argument = arguments_[at_];
            Wrong wrong;
            if (!onlyArguments_ && argument == "--")
                onlyArguments_ = true;
            else if (!onlyArguments_ && isOption(argument))
                wrong = readOption(argument);
            else
                wrong = readArgument(argument);
            if (wrong)
                return wrong;
        }
        return check();
    }

    Options options;

private:
    Wrong readArgument(const std::string &argument)
    {
        if (!row_) {
            row_ = findCommand(argument);
            if (!row_)
                return "there is no command " + quoted(argument);
            options.command = row_->command;
            return std::nullopt;
        }
        if (options.arguments.size() == row_->arguments)
            return quoted(argument) + " is one argument too many" +
                   (takesOnlyFormula(*row_) ? "; write the formula in quotes" : "");
        options.arguments.push_back(argument);
        return std::nullopt;
    }

    Wrong readOption(const std::string &argument)
    {
        size_t equals = argument.find('=');
        std::string name = argument.substr(0, equals);
        const OptionRow *row = findOption(name);
        if (!row)
            return "there is no option " + quoted(name);
        given_ |= row->flag;
        if (!row->takesValue) {
            if (equals != std::string::npos)
                return quoted(name) + " takes no value";
            (row->flag == csv ? options.csv : options.radians) = true;
            return std::nullopt;
        }
        if (equals != std::string::npos)
            return take(*row, argument.substr(equals + 1));
        if (at_ + 1 == arguments_.size())
            return "the value of " + quoted(name) + " is missing";
        return take(*row, arguments_[++at_]);
    }

    Wrong take(const OptionRow &row, std::string value)
    {
        if (row.flag == set) {
            options.sets.push_back(std::move(value));
            return std::nullopt;
        }
        std::string &target = row.flag == unit ? options.unit : row.flag == by ? options.by : options.journal;
        if (value.empty())
            return "the value of " + quoted(row.name) + " is empty";
        if (!target.empty())
            return quoted(row.name) + " is given twice";
        target = std::move(value);
        return std::nullopt;
    }

    Wrong check() const
    {
        const CommandRow &row = row_ ? *row_ : console;
        for (const OptionRow &option : optionRows)
            if ((given_ & option.flag) && !(row.allowed & option.flag))
                return quoted(option.name) +
                       (row_ ? " is no option of " + quoted(row.name) : " needs a command");
        if (options.arguments.size() < row.arguments)
            return std::string(row.missing);
        if (row.command == Command::derive && options.by.empty())
            return "'derive' needs --by NAME";
        return std::nullopt;
    }

    const std::vector<std::string> &arguments_;
    size_t at_ = 0;
    const CommandRow *row_ = nullptr;
    bool onlyArguments_ = false;
    unsigned given_ = 0;
};

/** The command among the arguments, whatever else is wrong with them. */
std::string topicOf(const std::vector<std::string> &arguments)
{
    auto found =
        std::find_if(arguments.begin(), arguments.end(), [](auto &a) { return findCommand(a) != nullptr; });
    return found == arguments.end() ? "" : *found;
}

}

std::variant<Options, HelpWanted, VersionWanted, UsageError>
readOptions(const std::vector<std::string> &arguments)
{
    auto end = std::find(arguments.begin(), arguments.end(), "--");
    if (std::find(arguments.begin(), end, "--help") != end)
        return HelpWanted{topicOf({arguments.begin(), end})};
    if (std::find(arguments.begin(), end, "--version") != end)
        return VersionWanted{};
    Reader reader(arguments);
    if (auto wrong = reader.read())
        return UsageError{*wrong, topicOf(arguments)};
    return std::move(reader.options);
}

}
