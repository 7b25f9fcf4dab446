#pragma once

// When each pair of marker and number was last filed or repeated.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vx::frame {

inline uint64_t pairOf(int32_t marker, int32_t number) noexcept
{
    return uint64_t{static_cast<uint32_t>(marker)} << 32 | static_cast<uint32_t>(number);
}

/**
 * The second of every pair, in a table that is probed slot by slot. A pair of
 * another second is filed like one never seen, so old ones may go when a large
 * table would have to grow.
 */
class RepeatFilter {
public:
    /** The second in which the pair was last seen, never for a new one; `now` takes its place. */
    int64_t exchange(uint64_t pair, int64_t now)
    {
        if (2 * (taken_ + 1) > slots_.size())
            grow(now);
        Slot &slot = slotOf(pair);
        int64_t before = slot.second;
        taken_ += before == never;
        slot = {pair, now};
        return before;
    }

    void clear() noexcept
    {
        slots_.clear();
        taken_ = 0;
    }

    static constexpr int64_t never = INT64_MIN;

private:
    static constexpr size_t smallest = 64;
    static constexpr size_t keptWhole = 4096; ///< slots up to which nothing is forgotten

    struct Slot {
        uint64_t pair = 0;
        int64_t second = never;
    };

    Slot &slotOf(uint64_t pair) noexcept
    {
        // The numbers of a file are neighbours and stay so; files begin at places of their own.
        size_t mask = slots_.size() - 1;
        size_t at = static_cast<size_t>(pair + (pair >> 32) * 0x9E3779B1u) & mask;
        while (slots_[at].second != never && slots_[at].pair != pair)
            at = (at + 1) & mask;
        return slots_[at];
    }

    void grow(int64_t now)
    {
        bool forget = slots_.size() >= keptWhole;
        size_t kept = 0;
        for (const Slot &slot : slots_)
            kept += slot.second != never && (!forget || slot.second == now);
        size_t size = smallest;
        while (size < 4 * (kept + 1))
            size *= 2;
        std::vector<Slot> old(size);
        old.swap(slots_);
        taken_ = kept;
        for (const Slot &slot : old)
            if (slot.second != never && (!forget || slot.second == now))
                slotOf(slot.pair) = slot;
    }

    std::vector<Slot> slots_; ///< a power of two of them, or none; at most half are taken
    size_t taken_ = 0;
};

}
