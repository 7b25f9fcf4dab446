#pragma once

// The keys of a keyed list in ascending order, kept aside for walks.
//
// Made on the first ordered walk. Single changes between two steps of a walk
// are worked in, so that a walk may remove what it visits; after more changes
// than that no walk is under way, and the order is dropped until the next one
// makes it anew. Changes to a list that is never walked cost nothing.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "vx/list.h"

namespace vx::containers {

class KeyOrder {
public:
    static constexpr size_t none = SIZE_MAX;

    /** Make the order, if it is not there. False for want of memory. */
    bool make(const VxLnkNode *chain, int32_t count);

    void drop() noexcept;
    void added(VxLnkNode *node) noexcept
    {
        if (made_)
            workIn(node);
    }
    void removed(int32_t key) noexcept
    {
        if (made_)
            takeOut(key);
    }

    /** Places of the nearest key at or above, above, at or below, below a key; `none` if there is none.
     *  `near` is the place where the key was last seen, or none. */
    size_t notBelow(int32_t key) const noexcept;
    size_t above(int32_t key, size_t near) const noexcept;
    size_t notAbove(int32_t key) const noexcept;
    size_t below(int32_t key, size_t near) const noexcept;

    int32_t keyAt(size_t place) const noexcept { return entries_[place].key; }
    void *elementAt(size_t place) const noexcept { return entries_[place].element; }

    /** Fetch the element some steps away, where a walk will be soon. */
    void prefetch(size_t place, bool up) const noexcept
    {
        constexpr size_t distance = 12;
        size_t ahead = up ? place + distance : place - distance;
        if (ahead < entries_.size())
            __builtin_prefetch(entries_[ahead].element);
    }

private:
    struct Entry {
        int32_t key;
        void *element; ///< null: the key was removed
    };

    void workIn(VxLnkNode *node) noexcept;
    void takeOut(int32_t key) noexcept;
    bool manyChanges() noexcept;
    size_t lowerBound(int32_t key) const noexcept;
    size_t aliveFrom(size_t place) const noexcept;
    size_t aliveBefore(size_t end) const noexcept;

    std::vector<Entry> entries_;
    size_t first_ = 0;   ///< removed entries in front of it are never looked at
    size_t dead_ = 0;    ///< removed entries from there on
    size_t changes_ = 0; ///< since a walk last asked
    bool made_ = false;
};

}
