// Walks a text: words, characters, delimiters, integers.

#include "vx/str.h"

#include <cstring>

#include "platform/os/os.h"
#include "text/codepage.h"
#include "text/str_integer.h"
#include "text/str_scan.h"

using namespace vx;

namespace {

constexpr size_t wordSize = 256;

struct Word {
    const char *first;
    size_t length;
};

/** The n-th word of a text, the first being 1; of length 0 when there is none. */
Word nthWord(const char *s, int32_t n)
{
    if (!s || n < 1)
        return {s, 0};
    const text::CodePage &page = text::codePage();
    for (;;) {
        const char *first = text::skipBlanks(page, s);
        s = text::skipToBlank(page, first);
        if (*first == '\0' || --n == 0)
            return {first, static_cast<size_t>(s - first)};
    }
}

int32_t advance(char **p, const char *to)
{
    int32_t skipped = static_cast<int32_t>(to - *p);
    *p += skipped;
    return skipped;
}

bool isUidSeparator(const text::CodePage &page, const char *p)
{
    return *p == ',' || *p == ':' || text::spaceBytes(page, p) != 0;
}

}

char *VxStrElem(const char *s, int32_t n)
{
    thread_local char word[wordSize];
    const Word found = nthWord(s, n);
    if (found.length >= wordSize)
        os::securityFailure("VxStrElem: a word of 256 bytes or more\n");
    text::copyPiece(word, wordSize, found.first ? found.first : "", found.length);
    return word;
}

int32_t VxStrElemIs(const char *s, const char *word, int32_t n)
{
    if (!s || !word)
        return 0;
    const Word found = nthWord(s, n);
    return found.length > 0 && found.length == std::strlen(word) &&
           std::memcmp(found.first, word, found.length) == 0;
}

char *VxStrNext(const char *p)
{
    return p && *p ? const_cast<char *>(p) + text::charBytes(text::codePage(), p) : nullptr;
}

char *VxStrPrev(const char *start, const char *p)
{
    if (!start || !p || p <= start)
        return nullptr;
    return const_cast<char *>(text::prevChar(text::codePage(), start, p));
}

uint32_t VxStrMovePtr(char **p, int32_t delim)
{
    if (!p || !*p)
        return 1;
    const uint32_t wanted = text::asCharValue(delim);
    const char *found = text::findChar(text::codePage(), *p, wanted);
    if (!found)
        return 1;
    advance(p, found + text::valueBytes(wanted));
    return 0;
}

uint32_t VxStrMovePtrRev(const char *start, char **p, int32_t delim)
{
    if (!start || !p || !*p)
        return 1;
    const text::CodePage &page = text::codePage();
    const uint32_t wanted = text::asCharValue(delim);
    const char *last = nullptr;
    const char *at = text::findChar(page, start, wanted);
    while (at && at < *p) {
        last = at;
        at = text::findChar(page, at + text::valueBytes(wanted), wanted);
    }
    if (!last)
        return 1;
    *p -= *p - last;
    return 0;
}

int32_t VxStrSkipBlank(char **p)
{
    return p && *p ? advance(p, text::skipBlanks(text::codePage(), *p)) : 0;
}

int32_t VxStrSkipToBlank(char **p)
{
    return p && *p ? advance(p, text::skipToBlank(text::codePage(), *p)) : 0;
}

int32_t VxStrNextInt(char **p)
{
    if (!p || !*p)
        return 0;
    const char *at = *p;
    int32_t value = VxStrNextIntCONST(&at);
    advance(p, at);
    return value;
}

int32_t VxStrNextIntCONST(const char **p)
{
    if (!p || !*p)
        return 0;
    while (**p && !text::beginsInteger(*p))
        ++*p;
    return **p ? text::readInteger(*p).value : 0;
}

uint32_t VxStrParseUid(const char *s, int32_t uid[3])
{
    if (!s || !uid)
        return 1;
    const text::CodePage &page = text::codePage();
    int32_t numbers[3];
    for (int i = 0; i < 3; ++i) {
        s = text::skipBlanks(page, s);
        if (!text::beginsInteger(s))
            return 1;
        const text::Integer number = text::readInteger(s);
        if (!number.fits)
            return 1;
        numbers[i] = number.value;
        if (i == 2)
            break;
        if (!isUidSeparator(page, s))
            return 1;
        s = text::skipBlanks(page, s);
        if (*s == ',' || *s == ':')
            ++s;
    }
    if (*text::skipBlanks(page, s) != '\0')
        return 1;
    std::memcpy(uid, numbers, sizeof numbers);
    return 0;
}
