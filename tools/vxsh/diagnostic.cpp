#include "tools/vxsh/diagnostic.h"

#include <algorithm>

namespace vxsh {

namespace {

constexpr std::string_view indent = "    ";
constexpr std::string_view cut = "...";

/** Bytes of a long line that are shown before and behind the place. */
constexpr size_t shownBefore = 60;
constexpr size_t shownBehind = 40;

bool continuesCharacter(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

size_t characters(std::string_view text)
{
    return static_cast<size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return !continuesCharacter(c); }));
}

size_t atCharacter(std::string_view text, size_t at)
{
    while (at > 0 && at < text.size() && continuesCharacter(text[at]))
        --at;
    return at;
}

std::string place(std::string_view source, size_t number, size_t column)
{
    if (number == 0)
        return std::string(source) + ": ";
    return std::string(source) + ':' + std::to_string(number) + ':' + std::to_string(column) + ": ";
}

/** The line, or a window on it, and a caret and tildes under the place. */
std::string excerpt(std::string_view line, Span span)
{
    size_t at = std::min(span.at, line.size());
    size_t from = at > shownBefore ? atCharacter(line, at - shownBefore) : 0;
    size_t to = line.size() - at > shownBehind ? atCharacter(line, at + shownBehind) : line.size();
    if (from <= cut.size())
        from = 0;
    if (line.size() - to <= cut.size())
        to = line.size();

    std::string shown(indent), mark(indent);
    if (from > 0) {
        shown += cut;
        mark.append(cut.size(), ' ');
    }
    std::string_view before = line.substr(from, at - from);
    std::string_view marked = line.substr(at, std::min(span.length, to - at));
    shown += printable(line.substr(from, to - from));
    if (to < line.size())
        shown += cut;
    mark.append(displayWidth(before), ' ');
    mark += '^';
    if (size_t width = displayWidth(marked); width > 1)
        mark.append(width - 1, '~');
    return shown + '\n' + mark + '\n';
}

}

size_t displayWidth(std::string_view text)
{
    size_t width = 0;
    for (char c : text) {
        auto byte = static_cast<unsigned char>(c);
        if (continuesCharacter(c))
            continue;
        // In UTF-8 these first bytes begin the East Asian scripts and the pictographs.
        bool wide = (byte >= 0xE3 && byte <= 0xED) || byte >= 0xF0;
        width += wide ? 2 : 1;
    }
    return width;
}

std::string printable(std::string_view text)
{
    std::string out(text);
    for (char &c : out) {
        if (c == '\t')
            c = ' ';
        else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F)
            c = '?';
    }
    return out;
}

std::string renderProblem(std::string_view source, std::string_view line, size_t number,
                          const Problem &problem)
{
    size_t at = std::min(problem.place.at, line.size());
    std::string text = place(source, number, characters(line.substr(0, at)) + 1);
    return text + "error: " + printable(problem.message) + '\n' + excerpt(line, {at, problem.place.length});
}

}
