// Compares, sorts and upper-cases texts.

#include "vx/str.h"

#include <algorithm>
#include <cstring>

#include "text/codepage.h"
#include "text/str_case.h"
#include "text/str_integer.h"
#include "text/str_scan.h"

using namespace vx;

namespace {

/** -1, 0 or 1. */
template <typename Value> int32_t order(Value a, Value b)
{
    return a < b ? -1 : b < a ? 1 : 0;
}

/** The order of two texts when one of them is missing: the missing one comes first. */
int32_t orderOfNulls(const void *a, const void *b)
{
    return order(a != nullptr, b != nullptr);
}

int32_t compareByChars(const text::CodePage &page, const char *a, const char *b)
{
    size_t same = 0;
    while (a[same] == b[same] && a[same])
        ++same;
    if (page.kind == text::CodePage::Kind::singleByte || a[same] == b[same])
        return order(static_cast<uint8_t>(a[same]), static_cast<uint8_t>(b[same]));
    // The bytes differ inside or at the start of a character: the whole characters decide.
    size_t at = std::min(text::boundaryBefore(page, a, same), text::boundaryBefore(page, b, same));
    int aBytes = text::charBytes(page, a + at);
    int bBytes = text::charBytes(page, b + at);
    while (aBytes == bBytes && at + static_cast<size_t>(aBytes) <= same) {
        at += static_cast<size_t>(aBytes);
        aBytes = text::charBytes(page, a + at);
        bBytes = text::charBytes(page, b + at);
    }
    return order(text::charValue(a + at, aBytes), text::charValue(b + at, bBytes));
}

uint32_t lowerValue(const text::CodePage &page, const char *p, int bytes)
{
    char lower[4];
    text::lowerChar(page, p, bytes, lower);
    return text::charValue(lower, bytes);
}

/** The run of digits at `p` without its leading zeros; `p` moves behind it. */
struct Number {
    explicit Number(const char *&p)
    {
        while (*p == '0')
            ++p;
        digits = p;
        while (text::isDecimalDigit(*p))
            ++p;
        length = p - digits;
    }

    const char *digits;
    ptrdiff_t length;
};

/** Compares the numbers at `a` and `b` by value and moves both pointers behind them. */
int32_t compareNumbers(const char *&a, const char *&b)
{
    const Number x(a);
    const Number y(b);
    if (x.length != y.length)
        return order(x.length, y.length);
    return order(std::memcmp(x.digits, y.digits, static_cast<size_t>(x.length)), 0);
}

/** Records of one size that lie back to back, each a text; heap sort, since nothing may be allocated. */
class Records {
public:
    Records(char *first, size_t size) : page_(text::codePage()), first_(first), size_(size) {}

    void sort(size_t count)
    {
        for (size_t root = count / 2; root-- > 0;)
            siftDown(root, count);
        for (size_t last = count - 1; last > 0; --last) {
            exchange(0, last);
            siftDown(0, last);
        }
    }

private:
    char *at(size_t i) const { return first_ + i * size_; }
    bool less(size_t i, size_t j) const { return compareByChars(page_, at(i), at(j)) < 0; }
    void exchange(size_t i, size_t j) { std::swap_ranges(at(i), at(i) + size_, at(j)); }

    void siftDown(size_t root, size_t count)
    {
        for (;;) {
            size_t child = 2 * root + 1;
            if (child >= count)
                return;
            if (child + 1 < count && less(child, child + 1))
                ++child;
            if (!less(root, child))
                return;
            exchange(root, child);
            root = child;
        }
    }

    const text::CodePage &page_;
    char *first_;
    size_t size_;
};

}

int32_t VxStrSame(const char *a, const char *b)
{
    return a && b && std::strcmp(a, b) == 0;
}

int32_t VxStrSameI(const char *a, const char *b)
{
    if (!a || !b)
        return 0;
    const text::CodePage &page = text::codePage();
    for (;;) {
        int bytes = text::charBytes(page, b);
        char upper[4];
        text::upperChar(page, b, bytes, upper);
        const size_t n = static_cast<size_t>(bytes);
        if (std::strncmp(a, b, n) != 0 && std::strncmp(a, upper, n) != 0)
            return 0;
        if (*b == '\0')
            return 1;
        a += n;
        b += n;
    }
}

int32_t VxStrcmp(const char *a, const char *b)
{
    return a && b ? compareByChars(text::codePage(), a, b) : orderOfNulls(a, b);
}

int32_t VxStrcasecmp(const char *a, const char *b)
{
    if (!a || !b)
        return orderOfNulls(a, b);
    const text::CodePage &page = text::codePage();
    for (;;) {
        int aBytes = text::charBytes(page, a);
        int bBytes = text::charBytes(page, b);
        int32_t result = order(lowerValue(page, a, aBytes), lowerValue(page, b, bBytes));
        if (result != 0 || *a == '\0')
            return result;
        a += aBytes;
        b += bBytes;
    }
}

int32_t VxStrCmpAlphaNum(const char *a, const char *b)
{
    if (!a || !b)
        return orderOfNulls(a, b);
    for (;;) {
        // Digits never are part of a longer character, so bytes will do.
        const char *start = a;
        while (*a == *b && *a) {
            ++a;
            ++b;
        }
        ptrdiff_t digits = 0;
        while (a - digits > start && text::isDecimalDigit(a[-digits - 1]))
            ++digits;
        a -= digits;
        b -= digits;
        if (*a == '\0' || *b == '\0')
            return order(*a != '\0', *b != '\0');
        if (!text::isDecimalDigit(*a) || !text::isDecimalDigit(*b)) {
            if (text::isDecimalDigit(*a) != text::isDecimalDigit(*b))
                return text::isDecimalDigit(*a) ? -1 : 1;
            return order(static_cast<uint8_t>(*a), static_cast<uint8_t>(*b));
        }
        if (int32_t result = compareNumbers(a, b))
            return result;
    }
}

int32_t VxStrncmp(const char *a, const char *b, int32_t n)
{
    if (!a || !b)
        return orderOfNulls(a, b);
    const text::CodePage &page = text::codePage();
    for (; n > 0; --n) {
        int aBytes = text::charBytes(page, a);
        int bBytes = text::charBytes(page, b);
        int32_t result = order(text::charValue(a, aBytes), text::charValue(b, bBytes));
        if (result != 0 || *a == '\0')
            return result;
        a += aBytes;
        b += bBytes;
    }
    return 0;
}

uint32_t VxStrToupper(char *s, int32_t n)
{
    if (!s)
        return 1;
    const text::CodePage &page = text::codePage();
    for (int32_t done = 0; *s && (n < 1 || done < n); ++done) {
        int bytes = text::charBytes(page, s);
        text::upperChar(page, s, bytes, s);
        s += bytes;
    }
    return 0;
}

uint32_t VxStrSort(int32_t n, char *array, int32_t elemSize)
{
    if (!array || n < 0 || elemSize < 1)
        return 1;
    if (n > 1)
        Records(array, static_cast<size_t>(elemSize)).sort(static_cast<size_t>(n));
    return 0;
}
