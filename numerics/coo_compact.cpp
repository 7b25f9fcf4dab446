// Compaction of a coordinate matrix: elements are sorted by radix on their
// positions, and values by magnitude only within a position.

#include "numerics/coo_compact.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

namespace vx::numerics {

namespace {

using Element = VX::CooMatrixElement;

/** Orders positions by column, then by row. */
uint64_t positionKey(const Element &e) noexcept
{
    constexpr uint32_t sign = 0x80000000;
    return uint64_t{static_cast<uint32_t>(e.column) ^ sign} << 32 | (static_cast<uint32_t>(e.row) ^ sign);
}

bool before(const Element &a, const Element &b) noexcept
{
    return positionKey(a) < positionKey(b);
}

/** Orders values by magnitude, the negative of two equal ones first; NaNs come last. */
uint64_t magnitudeKey(double value) noexcept
{
    return std::rotl(std::bit_cast<uint64_t>(value), 1) ^ 1;
}

double valueOfKey(uint64_t key) noexcept
{
    return std::bit_cast<double>(std::rotr(key ^ 1, 1));
}

bool smaller(const Element &a, const Element &b) noexcept
{
    return magnitudeKey(a.value) < magnitudeKey(b.value);
}

// ---------------------------------------------------------------- sorting

/**
 * Sorts by position. Only the bits in which the rows and the columns of the
 * elements differ make up a key. What exceeds the cache is dealt out by the
 * highest digit of the key. A part that fits is sorted by its two highest
 * digits, which hold so many bits that hardly anything is left to be done
 * where these are equal.
 */
class PositionSort {
public:
    PositionSort(const Element *elements, size_t count) noexcept
    {
        int32_t maxRow = minRow_ = elements->row, maxColumn = minColumn_ = elements->column;
        for (const Element *e = elements; e != elements + count; ++e) {
            minRow_ = std::min(minRow_, e->row);
            maxRow = std::max(maxRow, e->row);
            minColumn_ = std::min(minColumn_, e->column);
            maxColumn = std::max(maxColumn, e->column);
        }
        rowBits_ = bitsOf(distance(maxRow, minRow_));
        bits_ = rowBits_ + bitsOf(distance(maxColumn, minColumn_));
    }

    /** Sort `from`; the result stands in `to`, which may be either of the two blocks. */
    void sort(Element *from, Element *other, size_t count, const Element *to) const noexcept
    {
        sort(from, other, count, bits_, to == from);
    }

private:
    static constexpr int widestDigit = 11;
    static constexpr size_t cached = 1 << 17;
    static constexpr size_t few = 24;

    using Counts = std::array<uint32_t, size_t{1} << widestDigit>;

    static uint32_t distance(int32_t high, int32_t low) noexcept
    {
        return static_cast<uint32_t>(high) - static_cast<uint32_t>(low);
    }

    static int bitsOf(size_t value) noexcept { return static_cast<int>(std::bit_width(value)); }

    static uint32_t maskOf(int width) noexcept { return (uint32_t{1} << width) - 1; }

    uint64_t key(const Element &e) const noexcept
    {
        return uint64_t{distance(e.column, minColumn_)} << rowBits_ | distance(e.row, minRow_);
    }

    uint32_t digit(const Element &e, int shift, uint32_t mask) const noexcept
    {
        return static_cast<uint32_t>(key(e) >> shift) & mask;
    }

    /**
     * Deal `from` out to `to` by a digit, given how often each occurs, and
     * where each part ends is in `counts` then. False when all have one digit:
     * nothing is done.
     */
    bool deal(const Element *from, Element *to, size_t count, int shift, int width,
              Counts &counts) const noexcept
    {
        const uint32_t mask = maskOf(width);
        if (counts[digit(*from, shift, mask)] == count)
            return false;
        uint32_t start = 0;
        for (uint32_t d = 0; d <= mask; ++d)
            start += std::exchange(counts[d], start);
        for (size_t i = 0; i < count; ++i)
            to[counts[digit(from[i], shift, mask)]++] = from[i];
        return true;
    }

    void sort(Element *from, Element *other, size_t count, int bits, bool inPlace) const noexcept
    {
        if (count <= few)
            sortFew(from, other, count, inPlace);
        else if (count <= cached || bits <= widestDigit)
            sortCached(from, other, count, bits, inPlace);
        else
            sortHighestFirst(from, other, count, bits, inPlace);
    }

    void sortFew(Element *from, Element *other, size_t count, bool inPlace) const noexcept
    {
        for (size_t i = 1; i < count; ++i) {
            const Element e = from[i];
            size_t at = i;
            for (; at > 0 && before(e, from[at - 1]); --at)
                from[at] = from[at - 1];
            from[at] = e;
        }
        if (!inPlace)
            std::copy_n(from, count, other);
    }

    void sortHighestFirst(Element *from, Element *other, size_t count, int bits, bool inPlace) const noexcept
    {
        Counts counts{};
        bits -= widestDigit;
        for (size_t i = 0; i < count; ++i)
            ++counts[digit(from[i], bits, maskOf(widestDigit))];
        if (!deal(from, other, count, bits, widestDigit, counts))
            return sort(from, other, count, bits, inPlace);
        size_t start = 0;
        for (size_t end : counts) {
            if (end > start)
                sort(other + start, from + start, end - start, bits, !inPlace);
            start = end;
        }
    }

    void sortCached(Element *from, Element *other, size_t count, int bits, bool inPlace) const noexcept
    {
        // Some bits more than the elements need if they lie scattered evenly.
        const int width = std::min({widestDigit, (bitsOf(count) + 5) / 2, (bits + 1) / 2});
        const int low = std::max(bits - 2 * width, 0), high = low + width;
        Counts lowCounts, highCounts;
        std::fill_n(lowCounts.begin(), maskOf(width) + 1, 0u);
        std::fill_n(highCounts.begin(), maskOf(width) + 1, 0u);
        for (size_t i = 0; i < count; ++i) {
            ++lowCounts[digit(from[i], low, maskOf(width))];
            ++highCounts[digit(from[i], high, maskOf(width))];
        }
        Element *to = other;
        if (deal(from, to, count, low, width, lowCounts))
            std::swap(from, to);
        if (deal(from, to, count, high, width, highCounts))
            std::swap(from, to);
        sortEqualDigits(from, to, count, low);
        const Element *wanted = inPlace == (to == other) ? from : to;
        if (wanted != from)
            std::copy_n(from, count, to);
    }

    /** Sort, by their lowest bits, the elements whose keys do not differ above these. */
    void sortEqualDigits(Element *elements, Element *other, size_t count, int bits) const noexcept
    {
        if (bits == 0)
            return;
        for (size_t start = 0, end = 1; start < count; start = end++) {
            const uint64_t high = key(elements[start]) >> bits;
            while (end < count && key(elements[end]) >> bits == high)
                ++end;
            if (end - start > 1)
                sort(elements + start, other + start, end - start, bits, true);
        }
    }

    int32_t minRow_, minColumn_;
    int rowBits_, bits_;
};

// ---------------------------------------------------------------- adding up

/** The sum of a few values whose keys are given: each is ranked by comparing it with all others. */
double sumOfFew(const uint64_t *keys, size_t count) noexcept
{
    std::array<uint8_t, 32> rank{};
    std::array<uint64_t, 32> ordered{};
    for (size_t i = 1; i < count; ++i) {
        uint8_t smallerOnes = 0;
        for (size_t j = 0; j < i; ++j) {
            const bool later = keys[i] < keys[j];
            rank[j] = static_cast<uint8_t>(rank[j] + later);
            smallerOnes = static_cast<uint8_t>(smallerOnes + !later);
        }
        rank[i] = smallerOnes;
    }
    for (size_t i = 0; i < count; ++i)
        ordered[rank[i]] = keys[i];
    double sum = valueOfKey(ordered[0]);
    for (size_t i = 1; i < count; ++i)
        sum += valueOfKey(ordered[i]);
    return sum;
}

/** The sum of the values that share a position, and of one more of another list's unless that is null. */
double sumOfGroup(Element *first, Element *last, const Element *another) noexcept
{
    constexpr size_t few = 32;
    const auto count = static_cast<size_t>(last - first) + (another ? 1 : 0);
    if (count == 1)
        return first->value;
    if (count == 2)
        return first->value + (another ? another->value : last[-1].value);
    if (count <= few) {
        std::array<uint64_t, few> keys;
        auto *end =
            std::transform(first, last, keys.data(), [](const Element &e) { return magnitudeKey(e.value); });
        if (another)
            *end = magnitudeKey(another->value);
        return sumOfFew(keys.data(), count);
    }
    std::sort(first, last, smaller);
    const Element *at = another ? std::lower_bound(first, last, *another, smaller) : last;
    double sum = at == first ? another->value : first->value;
    for (const Element *e = at == first ? first : first + 1; e != last; ++e) {
        if (e == at && at != first)
            sum += another->value;
        sum += e->value;
    }
    return another && at == last ? sum + another->value : sum;
}

/** Add up sorted elements in place: their new end. */
Element *sumSorted(Element *first, Element *last) noexcept
{
    Element *to = first;
    while (first != last) {
        const uint64_t key = positionKey(*first);
        Element *next = first + 1;
        while (next != last && positionKey(*next) == key)
            ++next;
        const double sum = sumOfGroup(first, next, nullptr);
        *to = *first;
        to++->value = sum;
        first = next;
    }
    return to;
}

/**
 * Merge [tail, tailEnd), sorted, into [first, last), compacted, from behind;
 * room for the tail is behind `last`. The new end.
 */
Element *mergeSorted(Element *first, Element *last, Element *tail, Element *tailEnd) noexcept
{
    Element *const end = last + (tailEnd - tail);
    Element *to = end;
    while (tailEnd != tail) {
        const uint64_t key = positionKey(tailEnd[-1]);
        Element *group = tailEnd - 1;
        while (group != tail && positionKey(group[-1]) == key)
            --group;
        while (last != first && key < positionKey(last[-1]))
            *--to = *--last;
        const Element *partner = last != first && positionKey(last[-1]) == key ? --last : nullptr;
        const double sum = sumOfGroup(group, tailEnd, partner);
        *--to = {group->row, group->column, sum};
        tailEnd = group;
    }
    return std::move(to, end, last);
}

bool compactAlready(const Element *elements, size_t count) noexcept
{
    auto notAscending = [](const Element &a, const Element &b) { return !before(a, b); };
    return std::adjacent_find(elements, elements + count, notAscending) == elements + count;
}

}

size_t compactElements(Element *elements, size_t count, size_t sorted) noexcept
{
    // A caller may have changed positions through the iterators.
    if (!compactAlready(elements, sorted))
        sorted = 0;
    Element *const tail = elements + sorted, *const end = elements + count;
    const bool follows = sorted == 0 || before(tail[-1], *std::min_element(tail, end, before));
    const bool inOrder = std::is_sorted(tail, end, before);
    if (follows && inOrder)
        return static_cast<size_t>(sumSorted(tail, end) - elements);

    std::unique_ptr<Element[]> room(new (std::nothrow) Element[count - sorted]);
    if (!room) {
        std::sort(elements, end, before);
        return static_cast<size_t>(sumSorted(elements, end) - elements);
    }
    const PositionSort order(tail, count - sorted);
    order.sort(tail, room.get(), count - sorted, follows ? tail : room.get());
    if (follows)
        return static_cast<size_t>(sumSorted(tail, end) - elements);
    return static_cast<size_t>(mergeSorted(elements, tail, room.get(), room.get() + (count - sorted)) -
                               elements);
}

}
