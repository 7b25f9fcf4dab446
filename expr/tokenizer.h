#pragma once

// Splits a formula into tokens, one at a time, over a range of its text.

#include <cstdint>
#include <string_view>

#include "expr/functions.h"
#include "text/codepage.h"

namespace vx::expr {

enum class TokenType : int32_t { end = 0, operation = 1, name = 2, number = 3, function = 4, text = 5 };

struct Token {
    TokenType type = TokenType::end;
    /** An operator's character; 't' and 'e' stand for "then" and "else". */
    char operation = '\0';
    /** At a character that begins no token: the type is `end`, but the text goes on. */
    bool unreadable = false;
    const Function *function = nullptr;
    /** Where it stands, with the brackets or quotes that do not belong to `text`. */
    const char *begin = nullptr;
    const char *end = nullptr;
    std::string_view text;
};

/** The characters that separate tokens, as one position of a text is tested for them. */
class Delimiters {
public:
    Delimiters(const text::CodePage &page, bool commas) noexcept : page_(page), commas_(commas) {}

    /** Bytes of the delimiter at `p`, 0 when there is none; the text goes on to its end, ',' or ')'. */
    int at(const char *p) const noexcept;

private:
    const text::CodePage &page_;
    bool commas_;
};

class Tokenizer {
public:
    enum class Mode { plain, extended, inquiry };

    Tokenizer(std::string_view text, Mode mode) noexcept;

    /** Read the next token: 0, or the error number of a malformed one, which token() then spans. */
    int32_t next() noexcept;

    const Token &token() const noexcept { return token_; }

    const char *position() const noexcept { return position_; }
    const char *end() const noexcept { return end_; }

    /** Go on at `position`, as if the text ended at `end`. */
    void setRange(const char *position, const char *end) noexcept
    {
        position_ = position;
        end_ = end;
    }

private:
    void readOperation(int length) noexcept;
    void readName() noexcept;
    void readBracketedName() noexcept;
    void readText() noexcept;
    int32_t readNumber() noexcept;
    void trace() const noexcept;

    bool delimiterAt(const char *p) const noexcept { return p == end_ || delimiters_.at(p) > 0; }

    const text::CodePage &page_;
    Delimiters delimiters_;
    const char *position_;
    const char *end_;
    bool extended_;
    bool trace_;
    Token token_;
};

/** Whether the debug settings ask for the parser's trace. */
bool tracing() noexcept;

}
