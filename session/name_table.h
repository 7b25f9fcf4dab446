#pragma once

// A table of named records: the names are owned copies, a look-up makes none.
//
// Slots of (hash, entry) are probed one after the other; at most half of them
// are taken, so that a hit costs one or two neighbouring slots and the entry.
// Entries keep their addresses and stand in a list in the order in which their
// names came, which a walk may follow while names are added.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <list>
#include <string>
#include <string_view>
#include <vector>

namespace vx::session {

/**
 * Hash of a name: eight bytes at a time, each mixed in by a round of
 * MurmurHash3's finalizer (Austin Appleby, public domain).
 */
inline uint64_t hashOf(std::string_view name) noexcept
{
    auto mix = [](uint64_t h) { return (h ^ (h >> 33)) * 0xFF51AFD7ED558CCDu; };
    auto eightAt = [](const char *p) {
        uint64_t bytes;
        std::memcpy(&bytes, p, sizeof bytes);
        return bytes;
    };
    const char *p = name.data();
    size_t left = name.size();
    uint64_t hash = left * 0x9E3779B97F4A7C15u;
    for (; left > 8; left -= 8, p += 8)
        hash = mix(hash ^ eightAt(p));
    uint64_t rest = 0;
    if (name.size() >= 8)
        rest = eightAt(p + left - 8); // may overlap the bytes before
    else
        for (; left > 0; --left, ++p)
            rest = rest << 8 | static_cast<uint8_t>(*p);
    hash = mix(hash ^ rest);
    return hash ^ (hash >> 33);
}

template <typename Record> class NameTable {
    struct Entry {
        std::string name;
        Record record;
    };
    using Entries = std::list<Entry>;

public:
    NameTable() = default;
    NameTable(NameTable &&) = default;
    NameTable &operator=(NameTable &&) = default;

    /** The record of a name, or null. */
    Record *find(std::string_view name) noexcept
    {
        Slot *slot = slotOf(name, keyOf(name));
        return slot && slot->hash != empty ? &slot->entry->record : nullptr;
    }

    /** The record of a name, value-initialised if the name is new. On an exception nothing has changed. */
    Record &at(std::string_view name)
    {
        if (Record *known = find(name))
            return *known;
        if (2 * (entries_.size() + 1) > slots_.size())
            grow();
        entries_.push_back({std::string(name), Record{}});
        uint64_t hash = keyOf(name);
        *slotOf(name, hash) = {hash, std::prev(entries_.end())};
        return entries_.back().record;
    }

    /** Remove a name; one that is not there is ignored. */
    void erase(std::string_view name) noexcept
    {
        Slot *slot = slotOf(name, keyOf(name));
        if (!slot || slot->hash == empty)
            return;
        entries_.erase(slot->entry);
        close(static_cast<size_t>(slot - slots_.data()));
    }

    size_t size() const noexcept { return entries_.size(); }

    /** Entries, oldest first; names added during a walk come at its end. */
    typename Entries::iterator begin() noexcept { return entries_.begin(); }
    typename Entries::iterator end() noexcept { return entries_.end(); }

private:
    static constexpr uint64_t empty = 0;

    struct Slot {
        uint64_t hash = empty;
        typename Entries::iterator entry{};
    };

    static uint64_t keyOf(std::string_view name) noexcept
    {
        uint64_t hash = hashOf(name);
        return hash != empty ? hash : 1;
    }

    size_t after(size_t at) const noexcept { return (at + 1) & (slots_.size() - 1); }
    size_t home(uint64_t hash) const noexcept { return hash & (slots_.size() - 1); }

    /** The slot that holds a name, else the empty one where it belongs; null while there are no slots. */
    Slot *slotOf(std::string_view name, uint64_t hash) noexcept
    {
        if (slots_.empty())
            return nullptr;
        size_t at = home(hash);
        while (slots_[at].hash != empty && !(slots_[at].hash == hash && slots_[at].entry->name == name))
            at = after(at);
        return &slots_[at];
    }

    void grow()
    {
        std::vector<Slot> old(slots_.empty() ? 16 : 2 * slots_.size());
        old.swap(slots_);
        for (const Slot &slot : old) {
            if (slot.hash == empty)
                continue;
            size_t at = home(slot.hash);
            while (slots_[at].hash != empty)
                at = after(at);
            slots_[at] = slot;
        }
    }

    /**
     * Empty a slot and move up those behind it that would no longer be found
     * (Knuth, The Art of Computer Programming 3, section 6.4, algorithm R).
     */
    void close(size_t gap) noexcept
    {
        for (size_t at = after(gap); slots_[at].hash != empty; at = after(at)) {
            size_t mask = slots_.size() - 1;
            size_t fromHome = (at - home(slots_[at].hash)) & mask;
            size_t fromGap = (at - gap) & mask;
            if (fromHome < fromGap)
                continue;
            slots_[gap] = slots_[at];
            gap = at;
        }
        slots_[gap] = Slot{};
    }

    Entries entries_;
    std::vector<Slot> slots_; ///< a power of two of them, at most half taken
};

}
