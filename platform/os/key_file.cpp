#include "platform/os/key_file.h"

#include <algorithm>
#include <vector>

#include "platform/ascii.h"

namespace vx::os {

namespace {

// ---------------------------------------------------------------- values as one line

struct Code {
    std::string_view written;
    char byte;
};
constexpr Code codes[] = {{"%0A", '\n'}, {"%0D", '\r'}, {"%25", '%'}};

const Code *codeAt(std::string_view text) noexcept
{
    for (const Code &code : codes)
        if (text.starts_with(code.written))
            return &code;
    return nullptr;
}

std::string encode(std::string_view text)
{
    std::string line;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n')
            line += "%0A";
        else if (text[i] == '\r')
            line += "%0D";
        else if (codeAt(text.substr(i)))
            line += "%25";
        else
            line += text[i];
    }
    return line;
}

std::string decode(std::string_view line)
{
    std::string text;
    while (!line.empty()) {
        const Code *code = codeAt(line);
        text += code ? code->byte : line[0];
        line.remove_prefix(code ? code->written.size() : 1);
    }
    return text;
}

// ---------------------------------------------------------------- the file's lines

/** Where a value stands in the file's text, or where it belongs. */
struct Place {
    bool found = false;
    bool keyFound = false;
    size_t begin = 0; ///< of the value's line, or of the gap at the end of its key
    size_t end = 0;   ///< behind the line's break
    std::string_view value;
};

std::string_view sectionOf(std::string_view line) noexcept
{
    size_t close = line.rfind(']');
    return close == line.npos ? std::string_view() : line.substr(1, close - 1);
}

Place locate(std::string_view text, std::string_view key, std::string_view name) noexcept
{
    Place place;
    place.begin = place.end = text.size();
    bool inKey = false;
    for (size_t begin = 0; begin < text.size();) {
        size_t end = text.find('\n', begin);
        size_t next = end == text.npos ? text.size() : end + 1;
        std::string_view line = text.substr(begin, end == text.npos ? end : end - begin);
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        size_t equals = line.find('=');
        if (line.starts_with('[')) {
            inKey = ascii::sameIgnoringCase(sectionOf(line), key);
            place.keyFound |= inKey;
        } else if (inKey && !line.starts_with('#') && !line.starts_with(';') && equals != line.npos &&
                   ascii::sameIgnoringCase(line.substr(0, equals), name)) {
            return {true, true, begin, next, line.substr(equals + 1)};
        }
        if (inKey && !line.empty())
            place.begin = place.end = next;
        begin = next;
    }
    return place;
}

}

void putSetting(std::string &text, std::string_view key, std::string_view name, std::string_view value)
{
    Place place = locate(text, key, name);
    std::string lines;
    if (place.begin > 0 && text[place.begin - 1] != '\n')
        lines += '\n';
    if (!place.keyFound) {
        if (!text.empty())
            lines += '\n';
        lines.append("[").append(key).append("]\n");
    }
    lines.append(name).append("=").append(encode(value)).append("\n");
    text.replace(place.begin, place.end - place.begin, lines);
}

bool findSetting(std::string_view text, std::string_view key, std::string_view name, std::string &value)
{
    Place place = locate(text, key, name);
    if (place.found)
        value = decode(place.value);
    return place.found;
}

bool findSubkey(std::string_view text, std::string_view key, size_t n, std::string &name)
{
    std::vector<std::string_view> found;
    while (!text.empty()) {
        std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        std::string_view section = line.starts_with('[') ? sectionOf(line) : std::string_view();
        if (section.size() <= key.size() || section[key.size()] != '\\' ||
            !ascii::sameIgnoringCase(section.substr(0, key.size()), key))
            continue;
        section.remove_prefix(key.size() + 1);
        std::string_view child = section.substr(0, section.find('\\'));
        auto same = [&](std::string_view other) { return ascii::sameIgnoringCase(other, child); };
        if (std::none_of(found.begin(), found.end(), same))
            found.push_back(child);
    }
    if (n < found.size())
        name = found[n];
    return n < found.size();
}

bool canStandInKeyFile(std::string_view key, std::string_view name) noexcept
{
    bool oneLine = key.find_first_of("\r\n") == key.npos && name.find_first_of("\r\n=") == name.npos;
    bool readsBack = name.empty() || std::string_view("[#;").find(name[0]) == std::string_view::npos;
    return oneLine && readsBack;
}

}
