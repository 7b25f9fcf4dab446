#include "tools/vxsh/conditional.h"

#include "tools/vxsh/name_scan.h"

namespace vxsh {

namespace {

/** The next keyword or parenthesis at or behind `at`; what stands in quotes or brackets is passed over. */
size_t nextMark(std::string_view formula, size_t at)
{
    while (at < formula.size()) {
        if (formula[at] == '(' || formula[at] == ')' || startsKeyword(formula, at))
            return at;
        if (formula[at] == '"')
            at = behindQuotes(formula, at);
        else if (formula[at] == '[')
            at = bracketEnd(formula, at);
        else
            ++at;
    }
    return at;
}

bool isThen(std::string_view formula, size_t at)
{
    return (formula[at] | 0x20) == 't';
}

/** What stands between parentheses that enclose the whole formula. */
Span inside(std::string_view formula, Span part)
{
    for (;;) {
        std::string_view text = trimmed(formula.substr(part.at, part.length));
        part = {static_cast<size_t>(text.data() - formula.data()), text.size()};
        if (text.empty() || text.front() != '(')
            return part;
        size_t depth = 0, at = 0;
        do {
            at = nextMark(text, at);
            if (at == text.size())
                return part;
            if (text[at] == '(')
                ++depth;
            else if (text[at] == ')')
                --depth;
            ++at;
        } while (depth > 0);
        if (at != text.size())
            return part;
        part = {part.at + 1, part.length - 2};
    }
}

}

std::optional<Conditional> splitConditional(std::string_view formula)
{
    Span whole = inside(formula, {0, formula.size()});
    size_t end = whole.at + whole.length;
    std::string_view text = formula.substr(0, end);
    size_t parentheses = 0, conditions = 0, thenAt = end, elseAt = end;
    for (size_t at = nextMark(text, whole.at); at < end; at = nextMark(text, at + 1)) {
        if (text[at] == '(') {
            ++parentheses;
        } else if (text[at] == ')') {
            if (parentheses-- == 0)
                return std::nullopt;
        } else if (parentheses == 0 && isThen(text, at)) {
            if (conditions++ == 0)
                thenAt = at;
        } else if (parentheses == 0 && conditions > 0 && --conditions == 0 && elseAt == end) {
            // This one closes the outermost condition; any behind it belong to its own value.
            elseAt = at;
            break;
        }
    }
    if (thenAt == end)
        return std::nullopt;
    size_t behindThen = thenAt + keywordLength;
    size_t behindElse = elseAt == end ? end : elseAt + keywordLength;
    return Conditional{
        {whole.at, thenAt - whole.at}, {behindThen, elseAt - behindThen}, {behindElse, end - behindElse}};
}

}
