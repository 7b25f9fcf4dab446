#include "tools/vxsh/name_scan.h"

namespace vxsh {

namespace {

constexpr std::string_view operators = "+-/*^%()!<>=&|,";

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool startsName(char c)
{
    return isLetter(c) || c == '#' || c == '$' || static_cast<unsigned char>(c) >= 0x80;
}

/** A point and a letter begin a unit, save for the coordinates .x .y .z and for .e. */
bool startsUnit(std::string_view text, size_t at)
{
    if (text[at] != '.' || at + 1 >= text.size() || !isLetter(text[at + 1]))
        return false;
    return std::string_view("exyz").find(static_cast<char>(text[at + 1] | 0x20)) == std::string_view::npos;
}

bool endsName(std::string_view text, size_t at)
{
    return operators.find(text[at]) != std::string_view::npos || startsKeyword(text, at) ||
           startsUnit(text, at);
}

NameToken bracketedName(std::string_view formula, size_t at)
{
    size_t end = bracketEnd(formula, at);
    return {bracketContent(formula.substr(at, end - at)), {at, end - at}};
}

NameToken plainName(std::string_view formula, size_t at)
{
    size_t end = at;
    while (end < formula.size() && !endsName(formula, end))
        ++end;
    std::string_view name = trimmed(formula.substr(at, end - at));
    return {name, {at, name.size()}};
}

size_t behindNumber(std::string_view text, size_t at)
{
    auto continues = [&](char c) { return isDigit(c) || c == '.' || c == 'e'; };
    while (at < text.size() && continues(text[at]) && !startsUnit(text, at))
        ++at;
    return at;
}

}

bool startsKeyword(std::string_view text, size_t at)
{
    auto matches = [&](std::string_view word) {
        for (size_t i = 0; i < word.size(); ++i)
            if (at + i >= text.size() || (text[at + i] | 0x20) != word[i])
                return false;
        return true;
    };
    return matches("then") || matches("else");
}

size_t behindQuotes(std::string_view text, size_t open)
{
    size_t close = text.find('"', open + 1);
    return close == std::string_view::npos ? text.size() : close + 1;
}

size_t bracketEnd(std::string_view text, size_t open)
{
    size_t depth = 0;
    bool quoted = false;
    for (size_t i = open; i < text.size(); ++i) {
        if (text[i] == '"' && text[i - 1] != '\\')
            quoted = !quoted;
        else if (text[i] == '[' && !quoted)
            ++depth;
        else if (text[i] == ']' && !quoted && --depth == 0)
            return i + 1;
    }
    return text.size();
}

std::string_view bracketContent(std::string_view bracketed)
{
    bracketed.remove_prefix(bracketed.size() > 1 && bracketed[1] == '$' ? 2 : 1);
    if (!bracketed.empty() && bracketed.back() == ']')
        bracketed.remove_suffix(1);
    return bracketed;
}

std::vector<NameToken> nameTokens(std::string_view formula)
{
    std::vector<NameToken> found;
    for (size_t at = 0; at < formula.size();) {
        if (formula[at] == '"') {
            at = behindQuotes(formula, at);
        } else if (startsKeyword(formula, at)) {
            at += keywordLength;
        } else if (startsUnit(formula, at)) {
            at += 1 + plainName(formula, at + 1).place.length;
        } else if (formula[at] == '[') {
            found.push_back(bracketedName(formula, at));
            at += found.back().place.length;
        } else if (startsName(formula[at])) {
            found.push_back(plainName(formula, at));
            at += found.back().place.length;
        } else if (isDigit(formula[at])) {
            at = behindNumber(formula, at);
        } else {
            ++at;
        }
    }
    return found;
}

Span placeOfName(std::string_view formula, std::string_view name)
{
    for (const NameToken &token : nameTokens(formula))
        if (token.name == name)
            return token.place;
    return {0, formula.size()};
}

bool isPlainName(std::string_view name)
{
    if (name.empty() || !startsName(name.front()))
        return false;
    for (size_t i = 0; i < name.size(); ++i)
        if (name[i] == '[' || name[i] == ']' || name[i] == '"' || name[i] == ':' || endsName(name, i))
            return false;
    return true;
}

}
