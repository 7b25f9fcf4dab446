// Matching names against patterns.

#include "vx/posix.hpp"

#include "text/codepage.h"
#include "text/str_case.h"

namespace VX {

namespace {

using vx::text::CodePage;

enum Flag : int32_t { separates = 0x1, noEscape = 0x2, pointLiteral = 0x4, ignoreCase = 0x10 };

/** A character of the code page as a number, in the order of its bytes; 0 at the end of a text. */
using Character = uint32_t;

/** Takes a text apart into characters. */
class Reader {
public:
    Reader(const CodePage &page, int32_t flags) noexcept : page_(page), fold_(flags & ignoreCase) {}

    /** The character at `p`, which moves behind it; stays at the end. */
    Character take(const char *&p) const noexcept
    {
        if (!*p)
            return 0;
        int bytes = vx::text::charBytes(page_, p);
        char lower[8];
        if (fold_)
            vx::text::lowerChar(page_, p, bytes, lower);
        Character value = 0;
        for (int i = 0; i < bytes; ++i)
            value = value << 8 | static_cast<uint8_t>(fold_ ? lower[i] : p[i]);
        p += bytes;
        return value;
    }

private:
    const CodePage &page_;
    bool fold_;
};

/** Matches as far as the last "*": an earlier one never needs to take more than it did. */
class Matcher {
public:
    Matcher(const char *pattern, const char *name, int32_t flags) noexcept
        : reader_(vx::text::codePage(), flags), flags_(flags), pattern_(pattern), name_(name), start_(name)
    {
    }

    bool matches() noexcept
    {
        while (*pattern_ || *name_) {
            if (*pattern_ == '*' ? takeStar() : matchOne())
                continue;
            if (!extendStar())
                return false;
        }
        return true;
    }

private:
    bool has(Flag flag) const noexcept { return flags_ & flag; }

    /** Whether `name_` stands at a point that only a point matches. */
    bool atLiteralPoint() const noexcept
    {
        return has(pointLiteral) && *name_ == '.' &&
               (name_ == start_ || (has(separates) && behindSeparator_));
    }

    bool takeStar() noexcept
    {
        if (atLiteralPoint())
            return false;
        while (*pattern_ == '*')
            ++pattern_;
        star_ = pattern_;
        starName_ = name_;
        return true;
    }

    /** Have the last "*" take one character more and go on behind it; false when there is none. */
    bool extendStar() noexcept
    {
        if (!star_)
            return false;
        Character c = reader_.take(starName_);
        if (c == 0 || (has(separates) && c == '\\'))
            return false;
        pattern_ = star_;
        name_ = starName_;
        behindSeparator_ = false;
        return true;
    }

    /** Match one character of the name; both move on. */
    bool matchOne() noexcept
    {
        bool literalPoint = atLiteralPoint();
        const char *before = name_;
        Character c = reader_.take(name_);
        if (c == 0 || !*pattern_)
            return false;
        bool isSeparator = has(separates) && c == '\\';
        bool wildcard = false;
        bool matched = matchToken(c, wildcard);
        if (!matched || (wildcard && (isSeparator || literalPoint))) {
            name_ = before;
            return false;
        }
        behindSeparator_ = isSeparator;
        return true;
    }

    bool matchToken(Character c, bool &wildcard) noexcept
    {
        wildcard = *pattern_ == '?';
        if (wildcard) {
            ++pattern_;
            return true;
        }
        if (*pattern_ == '[' && !isOpen(pattern_)) {
            const char *behind = pattern_ + 1;
            bool in = matchSet(behind, c);
            if (behind) {
                wildcard = true;
                pattern_ = behind;
                return in;
            }
            open_ = pattern_;
        }
        return takeLiteral(pattern_) == c;
    }

    /** A "[" that is known to have no "]"; then those behind it have none either. */
    bool isOpen(const char *bracket) const noexcept { return open_ && bracket >= open_; }

    /** A character of the pattern that may be escaped; a backslash at the very end is one itself. */
    Character takeLiteral(const char *&p) const noexcept
    {
        if (*p == '\\' && !has(noEscape) && p[1])
            ++p;
        return reader_.take(p);
    }

    /** Whether a set has `c`; `p` goes from behind its "[" to behind its "]", or to null without one. */
    bool matchSet(const char *&p, Character c) const noexcept
    {
        bool negated = *p == '!' || *p == '^';
        if (negated)
            ++p;
        bool in = false;
        for (bool first = true; first || *p != ']'; first = false) {
            Character low = takeMember(p);
            Character high = low;
            if (*p == '-' && p[1] && p[1] != ']') {
                ++p;
                high = takeMember(p);
            }
            if (low == 0 || high == 0 || !*p) {
                p = nullptr;
                return false;
            }
            in |= low <= c && c <= high;
        }
        ++p;
        return in != negated;
    }

    /** A character between brackets: 0 at the end, and for a backslash with nothing behind it. */
    Character takeMember(const char *&p) const noexcept
    {
        if (*p == '\\' && !has(noEscape))
            ++p;
        return reader_.take(p);
    }

    Reader reader_;
    int32_t flags_;
    const char *pattern_;
    const char *name_;
    const char *start_;
    const char *star_ = nullptr;     ///< behind the last "*" of the pattern
    const char *starName_ = nullptr; ///< behind what it has taken of the name
    const char *open_ = nullptr;     ///< the first "[" without a "]"
    bool behindSeparator_ = false;
};

}

int32_t fnmatch(const char *pattern, const char *name, int32_t flags)
{
    return pattern && name && Matcher(pattern, name, flags).matches() ? 0 : 1;
}

}
