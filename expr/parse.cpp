#include "vx/parse.h"
#include "vx/parse.hpp"

#include <cstring>
#include <new>

#include "expr/parser.h"
#include "expr/report.h"
#include "expr/units.h"
#include "vx/tools.h"

using namespace vx::expr;
using namespace vx;

namespace {

uint32_t parse(const char *text, Tokenizer::Mode mode, int32_t *constant, VsCnsGenOp **tree)
{
    if (constant)
        *constant = 0;
    if (tree)
        *tree = nullptr;
    if (!text || !tree)
        return 1;
    Parser parser(text, mode);
    *tree = parser.parse();
    if (!*tree) {
        report(parser.failure());
        return 1;
    }
    if (constant)
        *constant = parser.constant();
    return 0;
}

}

uint32_t VxParseGeEx(const char *text, int32_t *constant, VsCnsGenOp **tree)
{
    return parse(text, Tokenizer::Mode::plain, constant, tree);
}

uint32_t VxParseGeExExtended(const char *text, VsCnsGenOp **tree)
{
    return parse(text, Tokenizer::Mode::extended, nullptr, tree);
}

uint32_t VxParseVarReplace(const char *name, const char *replacement, const char *text, char *out)
{
    if (!out)
        return 1;
    *out = '\0';
    if (!name || !*name || !text || !*text || !replacement)
        return 1;
    const text::CodePage &page = text::codePage();
    Delimiters delimiters(page, true);
    size_t nameLength = std::strlen(name), replacementLength = std::strlen(replacement);
    bool replaced = false;
    bool wordStart = true; // the character before is a delimiter, or there is none
    while (*text) {
        const char *behind = text + nameLength;
        if (wordStart && std::strncmp(text, name, nameLength) == 0 && (!*behind || delimiters.at(behind))) {
            std::memcpy(out, replacement, replacementLength);
            out += replacementLength;
            text = behind;
            replaced = true;
            wordStart = false;
            continue;
        }
        int delimiter = delimiters.at(text);
        wordStart = delimiter > 0;
        auto bytes = static_cast<size_t>(delimiter ? delimiter : text::charBytes(page, text));
        std::memcpy(out, text, bytes);
        out += bytes;
        text += bytes;
    }
    *out = '\0';
    return replaced ? 0 : 1;
}

std::vector<std::string> VxParseVarInquire(const char *text)
{
    std::vector<std::string> names;
    if (!text)
        return names;
    Tokenizer tokens(text, Tokenizer::Mode::inquiry);
    try {
        while (tokens.next() == 0 && tokens.token().type != TokenType::end)
            if (tokens.token().type == TokenType::name)
                names.emplace_back(tokens.token().text);
    } catch (const std::bad_alloc &) {
        // As at a malformed token: what was found so far.
    }
    return names;
}

int32_t VxUnitTableGet(int32_t index, const char **name, double *factor, int32_t *unitClass)
{
    const Unit *unit = unitAt(index);
    if (!unit)
        return 0;
    if (name)
        *name = unit->name;
    if (factor)
        *factor = unit->factor;
    if (unitClass)
        *unitClass = unit->unitClass;
    return 1;
}

void VxCbGetUnitConv(VxUnitConvFn fn)
{
    VgfGetUnitConv = fn;
}
