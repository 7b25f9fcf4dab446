#include "host/option_file.h"

#include <optional>

namespace talm {

namespace {

constexpr std::string_view blanks = " \t\r\v\f";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

struct Option {
    std::string_view key, value;
};

/** What one line says. */
struct Line {
    std::optional<Option> option;
    const char *fault = nullptr;
};

Line readLine(std::string_view text)
{
    text = trimmed(text);
    if (text.empty() || text.front() == '#')
        return {};
    if (text.find('\0') != text.npos)
        return {{}, "a zero byte"};
    size_t divider = text.find('=');
    if (divider == text.npos)
        return {{}, "no '='"};
    std::string_view key = trimmed(text.substr(0, divider));
    if (key.empty())
        return {{}, "no key before '='"};
    return {Option{key, trimmed(text.substr(divider + 1))}, nullptr};
}

/** Cut the first line off `rest`. @return it with its line break */
std::string_view takeLine(std::string_view &rest)
{
    size_t end = rest.find('\n');
    std::string_view line = rest.substr(0, end == rest.npos ? end : end + 1);
    rest.remove_prefix(line.size());
    return line;
}

std::string_view withoutMark(std::string_view text)
{
    return text.starts_with(byteOrderMark) ? text.substr(byteOrderMark.size()) : text;
}

std::string_view withoutBreak(std::string_view line)
{
    if (line.ends_with('\n'))
        line.remove_suffix(1);
    return line;
}

std::string_view breakOf(std::string_view line)
{
    return line.ends_with("\r\n") ? "\r\n" : "\n";
}

/** The last line that sets `key`, which is the one that counts; empty when none does. */
std::string_view findOption(std::string_view text, std::string_view key)
{
    std::string_view found;
    for (std::string_view rest = text; !rest.empty();) {
        std::string_view line = takeLine(rest);
        Line read = readLine(withoutBreak(line));
        if (read.option && read.option->key == key)
            found = line;
    }
    return found;
}

}

std::string_view trimmed(std::string_view text)
{
    size_t from = text.find_first_not_of(blanks);
    if (from == text.npos)
        return {};
    return text.substr(from, text.find_last_not_of(blanks) - from + 1);
}

ParsedOptions parseOptions(std::string_view text)
{
    ParsedOptions out;
    size_t number = 0;
    for (std::string_view rest = withoutMark(text); !rest.empty();) {
        ++number;
        Line read = readLine(withoutBreak(takeLine(rest)));
        if (read.fault)
            out.faults.push_back({number, read.fault});
        if (read.option)
            out.values.insert_or_assign(std::string(read.option->key), std::string(read.option->value));
    }
    return out;
}

bool isStorable(std::string_view key, std::string_view value)
{
    constexpr std::string_view never("\n\0", 2);
    return !key.empty() && trimmed(key) == key && key.front() != '#' && !key.starts_with(byteOrderMark) &&
           key.find('=') == key.npos && key.find_first_of(never) == key.npos &&
           value.find_first_of(never) == value.npos;
}

std::string withOption(std::string_view text, std::string_view key, std::string_view value)
{
    std::string_view mark = text.substr(0, text.size() - withoutMark(text).size());
    std::string_view body = withoutMark(text);
    std::string_view old = findOption(body, key);
    size_t place = old.empty() ? body.size() : static_cast<size_t>(old.data() - body.data());
    std::string_view before = body.substr(0, place);
    std::string_view after = body.substr(before.size() + old.size());
    std::string_view lineBreak = breakOf(old.empty() ? body : old);

    std::string out(mark);
    out.append(before);
    if (!before.empty() && !before.ends_with('\n'))
        out.append(lineBreak);
    out.append(key).append(" = ").append(trimmed(value)).append(lineBreak);
    return out.append(after);
}

}
