// The order of keys that ordered walks of a keyed list follow.

#include "containers/key_order.h"

#include <algorithm>
#include <new>

namespace vx::containers {

namespace {

/** Changes between two steps that are worked in one by one. */
constexpr size_t fewChanges = 64;

}

bool KeyOrder::make(const VxLnkNode *chain, int32_t count)
{
    changes_ = 0;
    if (made_)
        return true;
    try {
        entries_.reserve(static_cast<size_t>(count));
    } catch (const std::bad_alloc &) {
        return false;
    }
    const VxLnkNode *node = chain;
    for (int32_t i = 0; i < count; ++i, node = node->chainNext)
        entries_.push_back({node->key, node->element});
    std::sort(entries_.begin(), entries_.end(), [](const Entry &a, const Entry &b) { return a.key < b.key; });
    made_ = true;
    return true;
}

void KeyOrder::drop() noexcept
{
    std::vector<Entry>().swap(entries_);
    first_ = dead_ = 0;
    made_ = false;
}

/** Counts a change; true when the order was dropped for it. */
bool KeyOrder::manyChanges() noexcept
{
    size_t alive = entries_.size() - first_ - dead_;
    if (++changes_ <= fewChanges && dead_ <= alive + fewChanges)
        return false;
    drop();
    return true;
}

void KeyOrder::workIn(VxLnkNode *node) noexcept
{
    if (manyChanges())
        return;
    size_t place = lowerBound(node->key);
    if (place < entries_.size() && entries_[place].key == node->key) {
        entries_[place].element = node->element;
        --dead_;
        return;
    }
    try {
        entries_.insert(entries_.begin() + static_cast<ptrdiff_t>(place), {node->key, node->element});
    } catch (const std::bad_alloc &) {
        drop();
    }
}

void KeyOrder::takeOut(int32_t key) noexcept
{
    if (manyChanges())
        return;
    entries_[lowerBound(key)].element = nullptr;
    ++dead_;
    for (; first_ < entries_.size() && !entries_[first_].element; ++first_)
        --dead_;
    for (; entries_.size() > first_ && !entries_.back().element; entries_.pop_back())
        --dead_;
}

size_t KeyOrder::notBelow(int32_t key) const noexcept
{
    return aliveFrom(lowerBound(key));
}

size_t KeyOrder::above(int32_t key, size_t near) const noexcept
{
    if (near < entries_.size() && near >= first_ && entries_[near].key == key)
        return aliveFrom(near + 1);
    size_t place = lowerBound(key);
    bool present = place < entries_.size() && entries_[place].key == key;
    return aliveFrom(present ? place + 1 : place);
}

size_t KeyOrder::notAbove(int32_t key) const noexcept
{
    size_t place = lowerBound(key);
    bool present = place < entries_.size() && entries_[place].key == key;
    return aliveBefore(present ? place + 1 : place);
}

size_t KeyOrder::below(int32_t key, size_t near) const noexcept
{
    bool there = near < entries_.size() && near >= first_ && entries_[near].key == key;
    return aliveBefore(there ? near : lowerBound(key));
}

/** The first place from first_ on whose key is not less; the end if there is none. */
size_t KeyOrder::lowerBound(int32_t key) const noexcept
{
    auto from = entries_.begin() + static_cast<ptrdiff_t>(first_);
    auto place =
        std::lower_bound(from, entries_.end(), key, [](const Entry &e, int32_t k) { return e.key < k; });
    return static_cast<size_t>(place - entries_.begin());
}

size_t KeyOrder::aliveFrom(size_t place) const noexcept
{
    while (place < entries_.size() && !entries_[place].element)
        ++place;
    return place < entries_.size() ? place : none;
}

size_t KeyOrder::aliveBefore(size_t end) const noexcept
{
    while (end > first_ && !entries_[end - 1].element)
        --end;
    return end > first_ ? end - 1 : none;
}

}
