#pragma once

// Quicksort over slots that are compared and exchanged by position.
//
// The larger part of each partition waits on a stack while the smaller one is
// sorted, so that 30 places are enough for 2^30 elements. The pivot is the
// median of the first, middle and last element (Singleton, CACM Algorithm
// 347); a contradictory comparator leaves any order, but stays inside.
//
// Slots have: before(i, j); exchange(i, j); lift(i, j), which moves slot i
// down to j <= i and those from there on up by one.

#include <algorithm>
#include <cstdint>

namespace vx::containers {

template <typename Slots> class Quicksort {
public:
    explicit Quicksort(Slots slots) noexcept : slots_(slots) {}

    void operator()(int32_t n)
    {
        Part part{0, n - 1};
        Part pending[mostPending];
        int waiting = 0;
        for (;;) {
            while (part.high - part.low >= smallest - 1) {
                int32_t middle = partition(part);
                Part lower{part.low, middle - 1};
                Part upper{middle + 1, part.high};
                bool lowerLarger = lower.high - lower.low > upper.high - upper.low;
                pending[waiting++] = lowerLarger ? lower : upper;
                part = lowerLarger ? upper : lower;
            }
            insertionSort(part);
            if (waiting == 0)
                return;
            part = pending[--waiting];
        }
    }

private:
    static constexpr int mostPending = 30;
    static constexpr int32_t smallest = 7; ///< shorter parts are sorted by insertion

    struct Part {
        int32_t low;
        int32_t high;
    };

    void insertionSort(Part part)
    {
        for (int32_t i = part.low + 1; i <= part.high; ++i) {
            int32_t to = i;
            while (to > part.low && slots_.before(i, to - 1))
                --to;
            if (to < i)
                slots_.lift(i, to);
        }
    }

    void order(int32_t i, int32_t j)
    {
        if (slots_.before(j, i))
            slots_.exchange(i, j);
    }

    /** Where the pivot ends: nothing in front of it is larger, nothing behind it smaller. */
    int32_t partition(Part part)
    {
        int32_t middle = part.low + (part.high - part.low) / 2;
        order(part.low, middle);
        order(part.low, part.high);
        order(middle, part.high);
        int32_t pivot = part.high - 1;
        slots_.exchange(middle, pivot);
        Part between = partBlocks({part.low + 1, pivot - 1}, pivot);
        int32_t low = between.low - 1;
        int32_t high = between.high + 1;
        for (;;) {
            while (++low < pivot && slots_.before(low, pivot)) {
            }
            while (--high > part.low && slots_.before(pivot, high)) {
            }
            if (low >= high)
                break;
            slots_.exchange(low, high);
        }
        slots_.exchange(low, pivot);
        return low;
    }

    /**
     * Part from both ends, a block at a time: first find what stands on the
     * wrong side, then exchange it. The comparisons' outcomes become numbers
     * and not jumps, which no processor could foresee (Edelkamp and Weiss,
     * BlockQuicksort, 2016).
     * @return what is left between the blocks
     */
    Part partBlocks(Part part, int32_t pivot)
    {
        constexpr int32_t block = 32;
        uint8_t low[block];
        uint8_t high[block];
        int32_t lows = 0;
        int32_t highs = 0;
        int32_t firstLow = 0;
        int32_t firstHigh = 0;
        while (part.high - part.low >= 2 * block) {
            if (lows == 0) {
                firstLow = 0;
                for (int32_t i = 0; i < block; ++i) {
                    low[lows] = static_cast<uint8_t>(i);
                    lows += !slots_.before(part.low + i, pivot);
                }
            }
            if (highs == 0) {
                firstHigh = 0;
                for (int32_t i = 0; i < block; ++i) {
                    high[highs] = static_cast<uint8_t>(i);
                    highs += !slots_.before(pivot, part.high - i);
                }
            }
            int32_t pairs = std::min(lows, highs);
            for (int32_t i = 0; i < pairs; ++i)
                slots_.exchange(part.low + low[firstLow + i], part.high - high[firstHigh + i]);
            lows -= pairs;
            highs -= pairs;
            firstLow += pairs;
            firstHigh += pairs;
            part.low += lows == 0 ? block : 0;
            part.high -= highs == 0 ? block : 0;
        }
        return part;
    }

    Slots slots_;
};

}
