#include "tools/vxsh/definition.h"

#include "tools/vxsh/name_scan.h"

namespace vxsh {

namespace {

constexpr std::string_view blanks = " \t\r\n\v\f";

/** [from, to) of the line without the blanks at its ends; an empty span stands at `from`. */
Span trimmedSpan(std::string_view line, size_t from, size_t to)
{
    std::string_view part = line.substr(from, to - from);
    size_t first = part.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {from, 0};
    return {from + first, part.find_last_not_of(blanks) - first + 1};
}

std::string_view of(std::string_view line, Span span)
{
    return line.substr(span.at, span.length);
}

/** The name inside brackets that enclose the whole text, else the text itself. */
std::string_view withoutBrackets(std::string_view name)
{
    if (name.empty() || name.front() != '[' || bracketEnd(name, 0) != name.size())
        return name;
    return bracketContent(name);
}

}

std::string_view trimmed(std::string_view text)
{
    return of(text, trimmedSpan(text, 0, text.size()));
}

std::optional<Problem> readDefinition(std::string line, Definition &out)
{
    out.line = std::move(line);
    out.name.clear();
    out.unit.clear();
    out.nameAt = out.unitAt = out.formulaAt = {};
    std::string_view text = out.line;

    if (size_t zero = text.find('\0'); zero != std::string_view::npos)
        return Problem{"The line holds a zero byte.", {zero, 1}};
    size_t equals = text.find('=');
    if (equals == std::string_view::npos)
        return Problem{"No '=' divides a name from a formula.", trimmedSpan(text, 0, text.size())};

    std::string_view left = text.substr(0, equals);
    size_t nameStart = left.find_first_not_of(blanks);
    size_t behindName =
        nameStart != std::string_view::npos && left[nameStart] == '[' ? bracketEnd(left, nameStart) : 0;
    size_t colon = left.rfind(':');
    bool hasUnit = colon != std::string_view::npos && colon >= behindName;

    out.nameAt = trimmedSpan(text, 0, hasUnit ? colon : equals);
    out.name = trimmed(withoutBrackets(of(text, out.nameAt)));
    if (hasUnit) {
        out.unitAt = trimmedSpan(text, colon + 1, equals);
        out.unit = of(text, out.unitAt);
    }
    out.formulaAt = trimmedSpan(text, equals + 1, text.size());

    if (out.name.empty())
        return Problem{"The name is missing.", {hasUnit ? colon : equals, 1}};
    if (out.name.size() > longestName)
        return Problem{"The name is longer than " + std::to_string(longestName) + " bytes.", out.nameAt};
    if (hasUnit && out.unit.empty())
        return Problem{"The unit is missing.", {colon, 1}};
    if (out.formulaAt.length == 0)
        return Problem{"The formula is missing.", {equals, 1}};
    return std::nullopt;
}

bool looksLikeDefinition(std::string_view line)
{
    line = trimmed(line);
    size_t end = line.find_first_of(":=");
    if (!line.empty() && line.front() == '[') {
        size_t behind = bracketEnd(line, 0);
        end = line.find_first_not_of(blanks, behind);
        return end != std::string_view::npos && (line[end] == ':' || line[end] == '=');
    }
    return end != std::string_view::npos && (end == 0 || isPlainName(trimmed(line.substr(0, end))));
}

std::string asReference(const std::string &name)
{
    return isPlainName(name) ? name : "[" + name + "]";
}

}
