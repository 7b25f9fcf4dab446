#include "expr/tokenizer.h"

#include <cstring>

#include "platform/ascii.h"
#include "vx/debug.h"
#include "vx/str.h"

namespace vx::expr {

namespace {

enum Class : uint8_t {
    delimiter = 1, ///< an operator or white space, whatever stands around it
    letter = 2,
    special = 4, ///< in a name, a byte that may end it or is not a character of its own
};

struct Classes {
    uint8_t of[256];
};

constexpr Classes makeClasses()
{
    Classes classes{};
    for (const char *p = "+-/*^%()!<>=&| \t\n\v\f\r"; *p; ++p)
        classes.of[static_cast<uint8_t>(*p)] |= delimiter | special;
    for (int c = 'a'; c <= 'z'; ++c) {
        classes.of[c] |= letter;
        classes.of[c - 'a' + 'A'] |= letter;
    }
    for (const char *p = "tTeE.,"; *p; ++p)
        classes.of[static_cast<uint8_t>(*p)] |= special;
    for (int byte = 0x80; byte < 0x100; ++byte)
        classes.of[byte] |= special;
    return classes;
}

constexpr Classes classes = makeClasses();

bool is(char c, Class wanted) noexcept
{
    return classes.of[static_cast<uint8_t>(c)] & wanted;
}

bool isKeyword(const char *p, const char *keyword) noexcept
{
    for (; *keyword; ++p, ++keyword)
        if (ascii::lower(*p) != *keyword)
            return false;
    return true;
}

constexpr int keywordLength = 4;
constexpr int32_t malformedNumber = 46;

bool isNumberChar(char c) noexcept
{
    return ascii::isDigit(c) || c == '.' || c == 'e' || c == '-' || c == '+';
}

}

int Delimiters::at(const char *p) const noexcept
{
    char c = *p;
    if (is(c, delimiter))
        return 1;
    switch (c) {
    case 't':
    case 'T': return isKeyword(p, "then") ? keywordLength : 0;
    case 'e':
    case 'E': return isKeyword(p, "else") ? keywordLength : 0;
    case '.':
        // Coordinates (.x .y .z) belong to their name, exponents (.e) to their number.
        return is(p[1], letter) && p[1] != 'e' && (p[1] < 'x' || p[1] > 'z') ? 1 : 0;
    case ',': return commas_ ? 1 : 0;
    default: return static_cast<uint8_t>(c) < 0x80 ? 0 : text::spaceBytes(page_, p);
    }
}

Tokenizer::Tokenizer(std::string_view text, Mode mode) noexcept
    : page_(text::codePage()), delimiters_(page_, mode == Mode::inquiry), position_(text.data()),
      end_(text.data() + text.size()), extended_(mode == Mode::extended), trace_(tracing())
{
}

int32_t Tokenizer::next() noexcept
{
    while (position_ != end_ && (*position_ == ' ' || *position_ == '\t'))
        ++position_;
    token_ = Token{};
    token_.begin = token_.end = position_;
    int32_t error = 0;
    if (position_ != end_) {
        char c = *position_;
        if (int length = delimiters_.at(position_))
            readOperation(length);
        else if (c == '[')
            readBracketedName();
        else if (is(c, letter) || c == '#' || c == '$' || static_cast<uint8_t>(c) >= 0x80)
            readName();
        else if (c == '"')
            readText();
        else if (ascii::isDigit(c) || c == '.')
            error = readNumber();
        else
            token_.unreadable = true;
    }
    position_ = token_.end;
    if (trace_)
        trace();
    return error;
}

void Tokenizer::readOperation(int length) noexcept
{
    token_.type = TokenType::operation;
    token_.operation = length == keywordLength ? ascii::lower(*position_) : *position_;
    token_.end = position_ + length;
    token_.text = {token_.begin, static_cast<size_t>(length)};
}

void Tokenizer::readName() noexcept
{
    const char *p = position_;
    const char *end = p; // behind the last character that is not a blank
    while (p != end_) {
        if (!is(*p, special)) {
            end = ++p;
        } else if (static_cast<uint8_t>(*p) >= 0x80) {
            end = p += text::charBytes(page_, p);
        } else if (*p == ' ') {
            ++p;
        } else if (delimiters_.at(p)) {
            break;
        } else {
            end = ++p;
        }
    }
    token_.type = TokenType::name;
    token_.end = end;
    token_.text = {token_.begin, static_cast<size_t>(end - token_.begin)};
    if (end != end_ && *end == '(' && (token_.function = findFunction(token_.text, extended_)))
        token_.type = TokenType::function;
}

void Tokenizer::readBracketedName() noexcept
{
    const char *p = position_ + 1;
    if (p != end_ && *p == '$')
        ++p;
    const char *begin = p;
    bool quoted = false;
    int depth = 1;
    for (char previous = '\0'; p != end_; p += text::charBytes(page_, p)) {
        if (*p == '"' && previous != '\\')
            quoted = !quoted;
        if (!quoted && *p == '[')
            ++depth;
        if (!quoted && *p == ']' && --depth == 0)
            break;
        // A trail byte that looks like a backslash is none.
        previous = text::charBytes(page_, p) == 1 ? *p : '\0';
    }
    token_.type = TokenType::name;
    token_.text = {begin, static_cast<size_t>(p - begin)};
    token_.end = p == end_ ? p : p + 1;
    if (token_.end != end_ && *token_.end == '(' && (token_.function = findFunction(token_.text, extended_)))
        token_.type = TokenType::function;
}

void Tokenizer::readText() noexcept
{
    const char *begin = position_ + 1;
    const char *quote = static_cast<const char *>(std::memchr(begin, '"', static_cast<size_t>(end_ - begin)));
    const char *end = quote ? quote : end_;
    token_.type = TokenType::text;
    token_.text = {begin, static_cast<size_t>(end - begin)};
    token_.end = quote ? quote + 1 : end_;
}

int32_t Tokenizer::readNumber() noexcept
{
    const char *p = position_;
    bool wellFormed = true;
    do {
        char c = *p;
        wellFormed = wellFormed && isNumberChar(c);
        p += text::charBytes(page_, p);
        if (wellFormed && c == 'e' && p != end_ && (*p == '+' || *p == '-'))
            ++p;
    } while (!delimiterAt(p));
    token_.type = TokenType::number;
    token_.end = p;
    token_.text = {token_.begin, static_cast<size_t>(p - token_.begin)};
    return wellFormed ? 0 : malformedNumber;
}

void Tokenizer::trace() const noexcept
{
    VxFprintf(VgToolsDbgFileDesc, "GeEx_GetTokn: Token = %.*s, Type = %d, Subtype = %d\n",
              static_cast<int>(token_.text.size()), token_.text.data(), static_cast<int>(token_.type),
              token_.function && token_.type == TokenType::function ? token_.function->number : 0);
}

bool tracing() noexcept
{
    return (VgToolsDbgGroup & 1) && VgToolsDbgLevel > 0 && VgToolsDbgFileDesc;
}

}
