#pragma once

// Binary search, insertion and removal in an array of records whose size is
// known only at run time. What compares is a callable, so that a comparison
// known to the compiler costs no call.

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vx::containers {

/** Where a search ended: the last record looked at, and how the key compares with it. */
struct Place {
    int32_t at;
    int32_t order; ///< negative: the key belongs before; positive: behind; zero: equal

    bool found() const noexcept { return order == 0; }
    /** Where a record is inserted: behind an equal one. */
    int32_t insertion() const noexcept { return order < 0 ? at : at + 1; }
};

struct SortedArray {
    uint8_t *bytes;
    int32_t count;
    size_t size;

    SortedArray(void *array, int32_t n, int32_t recordSize) noexcept
        : bytes(static_cast<uint8_t *>(array)), count(n), size(static_cast<size_t>(recordSize))
    {
    }

    void *record(int32_t at) const noexcept { return bytes + static_cast<size_t>(at) * size; }

    /** `compare(record)` tells where the key belongs; in an empty array the place is 0. */
    template <typename Compare> Place search(Compare &&compare) const
    {
        Place place{0, -1};
        int32_t low = 0;
        int32_t high = count - 1;
        while (low <= high) {
            place.at = low + (high - low) / 2;
            place.order = compare(record(place.at));
            if (place.found())
                break;
            if (place.order < 0)
                high = place.at - 1;
            else
                low = place.at + 1;
        }
        return place;
    }

    /** search(), and when that finds nothing, every record but the first in turn. */
    template <typename Compare> Place searchAll(Compare &&compare) const
    {
        Place place = search(compare);
        if (place.found())
            return place;
        for (int32_t at = 1; at < count; ++at)
            if (compare(record(at)) == 0)
                return {at, 0};
        return place;
    }

    /** There is room for one more behind the last. */
    void insert(int32_t at, const void *source) noexcept
    {
        uint8_t *gap = bytes + static_cast<size_t>(at) * size;
        std::memmove(gap + size, gap, static_cast<size_t>(count - at) * size);
        std::memcpy(gap, source, size);
        ++count;
    }

    void remove(int32_t at) noexcept
    {
        uint8_t *gap = bytes + static_cast<size_t>(at) * size;
        --count;
        std::memmove(gap, gap + size, static_cast<size_t>(count - at) * size);
    }
};

}
