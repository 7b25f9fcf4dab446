// Lists of identifiers: searched one by one until they are sorted.

#include <algorithm>
#include <limits>
#include <tuple>

#include "containers/sorted_array.h"
#include "vx/id.h"
#include "vx/mem.h"
#include "vx/sort.h"

namespace vx::containers {

namespace {

auto components(const VxId &id) noexcept
{
    return std::tie(id.a, id.b, id.c);
}

/** By a, b, c, as signed numbers. */
int32_t compareEntries(const void *x, const void *y)
{
    auto a = components(static_cast<const VxIdEntry *>(x)->id);
    auto b = components(static_cast<const VxIdEntry *>(y)->id);
    return (a > b) - (a < b);
}

/** The smallest position first among equal identifiers. */
bool comesBefore(const VxIdEntry &x, const VxIdEntry &y) noexcept
{
    int32_t order = compareEntries(&x, &y);
    return order ? order < 0 : x.position < y.position;
}

bool makeRoom(VxIdList &list)
{
    if (list.count < list.capacity)
        return true;
    int64_t capacity = int64_t{list.capacity} + list.increment;
    int64_t bytes = capacity * static_cast<int64_t>(sizeof(VxIdEntry));
    if (list.increment < 1 || bytes > std::numeric_limits<int32_t>::max())
        return false;
    void *entries = list.entries;
    if (VxMemResize(static_cast<int32_t>(bytes), &entries))
        return false;
    list.entries = static_cast<VxIdEntry *>(entries);
    list.capacity = static_cast<int32_t>(capacity);
    return true;
}

VxIdEntry *find(VxIdList &list, const VxIdEntry &sought)
{
    if (list.count < 1 || !list.entries)
        return nullptr;
    if (list.sorted) {
        void *found = nullptr;
        VxSortFind(list.entries, list.count, sizeof sought, &sought, compareEntries, &found);
        return static_cast<VxIdEntry *>(found);
    }
    VxIdEntry *end = list.entries + list.count;
    VxIdEntry *found = std::find_if(list.entries, end,
                                    [&](const VxIdEntry &entry) { return VxIdSame(&entry.id, &sought.id); });
    return found == end ? nullptr : found;
}

/** Insert an entry, whose position is set, at its sorted place: false when its identifier is there. */
bool insertSorted(VxIdList &list, const VxIdEntry &entry)
{
    return VxSortIns2(list.entries, &list.count, sizeof entry, &entry, compareEntries);
}

void append(VxIdList &list, const VxIdEntry &entry)
{
    list.entries[list.count++] = entry;
}

}

}

using namespace vx::containers;

uint32_t VxIdListAdd(VxIdList *list, VxIdEntry *entry)
{
    if (!list || !entry || !makeRoom(*list))
        return 1;
    if (list->sorted) {
        entry->position = list->count + 1;
        if (!insertSorted(*list, *entry))
            entry->position = list->count;
        return 0;
    }
    if (VxIdOnList(list, entry)) {
        entry->position = list->count;
        return 0;
    }
    entry->position = list->count + 1;
    append(*list, *entry);
    return 0;
}

uint32_t VxIdListAdd2(VxIdList *list, VxIdEntry *entry)
{
    if (!list || !entry || !makeRoom(*list))
        return 1;
    entry->position = list->count;
    if (list->sorted)
        insertSorted(*list, *entry);
    else
        append(*list, *entry);
    return 0;
}

uint32_t VxIdListSort(VxIdList *list, int32_t removeDuplicates)
{
    if (!list)
        return 1;
    list->sorted = 1;
    if (!list->entries || list->count < 2)
        return 0;
    VxIdEntry *end = list->entries + list->count;
    std::sort(list->entries, end, comesBefore);
    if (removeDuplicates) {
        end = std::unique(list->entries, end,
                          [](const VxIdEntry &x, const VxIdEntry &y) { return VxIdSame(&x.id, &y.id) != 0; });
        list->count = static_cast<int32_t>(end - list->entries);
    }
    return 0;
}

int32_t VxIdOnList(VxIdList *list, VxIdEntry *entry)
{
    if (!list || !entry)
        return 0;
    const VxIdEntry *found = find(*list, *entry);
    if (!found)
        return 0;
    entry->value = found->value;
    entry->position = found->position;
    entry->flag = found->flag;
    return 1;
}
