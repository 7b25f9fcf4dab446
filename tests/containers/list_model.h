#pragma once

// What a list is to do, said with standard containers. Capacities and page
// levels are worked out here by rules of their own.

#include <algorithm>
#include <optional>
#include <vector>

#include "vx/list.h"

namespace vx::test {

enum LayoutCode : int32_t { keyed, linked, array, pointers, tree, wrapped };

struct Value {
    int32_t words[3];

    friend bool operator==(const Value &, const Value &) = default;
};

constexpr int32_t valueBytes = sizeof(Value);

// With pages of 64 bytes: 5 values in one, 8 pointers in a directory.
constexpr int32_t smallPage = 64;
constexpr int32_t perPage = smallPage / valueBytes;
constexpr int32_t slots = smallPage / static_cast<int32_t>(sizeof(void *));

struct Item {
    int32_t key; ///< of keyed lists
    Value value;
};

inline int32_t roundedUp(int32_t n, int32_t unit)
{
    return (n + unit - 1) / unit;
}

struct ListModel {
    int32_t layout = array;
    int32_t capacity = 1;
    int32_t increment = 1;
    int32_t level = 0;
    std::vector<Item> items; ///< in storage order

    int32_t count() const { return static_cast<int32_t>(items.size()); }
    bool growing() const { return layout == array || layout == pointers; }
    bool inSlots() const { return growing() || layout == wrapped; }

    /** An empty list, as VxListMk makes it. */
    static std::optional<ListModel> made(int32_t layout, int32_t capacity, int32_t increment)
    {
        ListModel model{layout, 0, layout == tree || layout == wrapped ? 0 : 1, 0, {}};
        if (model.inSlots())
            model.capacity = std::max(capacity, layout == wrapped ? 0 : 1);
        if (model.growing())
            model.increment = std::max(increment, 1);
        if (layout == array)
            model.level = levelFor(model.capacity);
        return model.level < 0 ? std::nullopt : std::optional(model);
    }

    static int32_t levelFor(int32_t n)
    {
        if (n * valueBytes <= smallPage)
            return 0;
        int32_t pages = roundedUp(n, perPage);
        return pages <= slots ? 1 : pages <= slots * slots ? 2 : -1;
    }

    bool grow(int32_t extra)
    {
        if (layout == wrapped)
            return false;
        if (!growing())
            return true;
        int32_t grown = capacity + extra;
        if (layout == array && extra > 0) {
            int32_t pages = roundedUp(grown, perPage);
            if (level > 0 && pages > slots * slots)
                return false;
            if (level == 0)
                level = levelFor(grown) == 1 ? 1 : 0;
            else if (pages > slots)
                level = 2;
        }
        capacity = grown;
        return true;
    }

    bool growFor(int32_t index)
    {
        int32_t steps = std::max((index - capacity) / increment, 0);
        return steps <= 10 && grow(increment * (steps + 1));
    }

    std::vector<Item>::iterator find(int32_t key) { return std::ranges::find(items, key, &Item::key); }

    bool set(int32_t index, const Value &value, bool replace = true)
    {
        if (layout == tree) {
            items.push_back({0, value});
            return true;
        }
        if (layout == keyed) {
            if (auto known = find(index); known == items.end())
                items.push_back({index, value});
            else if (replace)
                known->value = value;
            capacity = std::max(capacity, index);
            return true;
        }
        if (index < 0 || (layout == linked && index > count()) || (layout == wrapped && index >= capacity))
            return false;
        if (growing() && index >= capacity && !growFor(index))
            return false;
        if (index >= count())
            items.resize(static_cast<size_t>(index) + 1);
        items[static_cast<size_t>(index)].value = value;
        return true;
    }

    bool insert(int32_t index, const Value &value)
    {
        if (layout == tree)
            return false;
        if (layout == keyed)
            return set(index, value, false);
        if (growing() && index == -1)
            index = count();
        if (index < 0 || (layout == linked && index > count()))
            return false;
        if (layout == wrapped && (count() == capacity || index - count() >= capacity - count()))
            return false;
        if (growing() && (index >= capacity || count() == capacity) && !growFor(index))
            return false;
        if (index > count())
            items.resize(static_cast<size_t>(index));
        items.insert(items.begin() + index, {0, value});
        return true;
    }

    bool remove(int32_t first, int32_t last)
    {
        if (layout == tree)
            return false;
        if (layout == keyed) {
            int32_t key = first;
            for (auto at = find(key); key <= last && at != items.end(); at = find(++key))
                items.erase(at);
            return key > first;
        }
        if (first < 0 || last < first || last >= count())
            return false;
        items.erase(items.begin() + first, items.begin() + last + 1);
        return true;
    }

    bool removeEqual(const Value &value)
    {
        if (layout == tree)
            return std::ranges::count(items, value, &Item::value) == 0;
        std::erase_if(items, [&value](const Item &item) { return item.value == value; });
        return true;
    }

    bool truncate(int32_t n)
    {
        if (layout == keyed || layout == tree || n < 0 || n > count())
            return false;
        if (n == 0 && layout != wrapped) {
            capacity = level = 0;
        } else if (n == count() || (inSlots() && n >= capacity)) {
            return true;
        } else if (layout == linked) {
            capacity = n;
        } else if (level == 1 && n < perPage) {
            capacity = perPage;
            level = 0;
        } else if (level == 1) {
            capacity = roundedUp(n, perPage) * perPage;
        } else if (level == 2) {
            capacity = std::min(capacity, roundedUp(roundedUp(n, perPage), slots) * slots * perPage);
        }
        items.resize(static_cast<size_t>(n));
        return true;
    }

    bool append(const ListModel &source)
    {
        if (layout == keyed || (layout == wrapped && count() + source.count() > capacity))
            return layout != wrapped && source.items.empty() && layout != keyed;
        int32_t needed = count() + source.count();
        if (growing() && needed > capacity) {
            int32_t wanted = layout == array ? levelFor(needed) : 0;
            if (wanted < 0)
                return false;
            if (level == 0 && wanted > 0) {
                level = wanted;
                capacity = needed;
            } else if (!grow(needed - capacity)) {
                return false;
            }
        }
        items.insert(items.end(), source.items.begin(), source.items.end());
        return true;
    }

    std::optional<ListModel> convertedTo(int32_t other) const
    {
        if (other == layout)
            return *this;
        auto result = made(other, count(), increment);
        if (!result)
            return {};
        for (int32_t i = 0; i < count(); ++i)
            result->items.push_back({i, items[static_cast<size_t>(i)].value});
        if (other == keyed)
            result->capacity = std::max(0, count() - 1);
        return result;
    }

    /** What a walk in direction 0, 1 or 2 visits: indices and values. */
    std::vector<Item> walk(int32_t direction) const
    {
        std::vector<Item> visits = items;
        if (layout != keyed)
            for (int32_t i = 0; i < count(); ++i)
                visits[static_cast<size_t>(i)].key = i;
        if (direction != 0)
            std::ranges::sort(visits, {}, &Item::key);
        if (direction == 2)
            std::ranges::reverse(visits);
        return visits;
    }

    /** Where a walk would begin. */
    int32_t begin(int32_t direction) const
    {
        if (layout != keyed)
            return direction == 2 ? count() - 1 : 0;
        return items.empty() ? 0 : direction == 2 ? capacity : std::ranges::min(items, {}, &Item::key).key;
    }
};

}
