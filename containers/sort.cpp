// Sorted arrays that their callers own, and tables of pairs on top of them.

#include "vx/sort.h"

#include <algorithm>
#include <functional>
#include <limits>

#include "containers/sorted_array.h"
#include "vx/mem.h"

namespace vx::containers {

namespace {

enum class Search {
    binary, ///< trusts the order
    all     ///< looks at every record but the first where the order leads nowhere
};

template <typename Compare> Place find(const SortedArray &array, Search search, Compare &&compare)
{
    return search == Search::all ? array.searchAll(compare) : array.search(compare);
}

template <typename Compare>
int32_t findRecord(void *array, int32_t count, int32_t size, Search search, void **record, Compare &&compare)
{
    if (record)
        *record = nullptr;
    if (!array || count < 1 || size < 1)
        return 0;
    SortedArray sorted(array, count, size);
    Place place = find(sorted, search, compare);
    if (place.found() && record)
        *record = sorted.record(place.at);
    return place.found();
}

enum class Equals { kept, refused };

int32_t insertRecord(void *array, int32_t *count, int32_t size, const void *record, VxCmpFn compare,
                     Search search, Equals equals)
{
    if (!array || !count || *count < 0 || size < 1 || !record || !compare)
        return 0;
    SortedArray sorted(array, *count, size);
    Place place = find(sorted, search, [&](const void *other) { return compare(record, other); });
    if (place.found() && equals == Equals::refused)
        return 0;
    sorted.insert(place.insertion(), record);
    *count = sorted.count;
    return 1;
}

/** `onDelete` is told of the record while it still stands in its place. */
template <typename Compare, typename OnDelete> int32_t
deleteRecord(void *array, int32_t *count, int32_t size, Search search, Compare &&compare, OnDelete &&onDelete)
{
    if (!array || !count || *count < 1 || size < 1)
        return 0;
    SortedArray sorted(array, *count, size);
    Place place = find(sorted, search, compare);
    if (!place.found())
        return 0;
    onDelete(sorted.record(place.at));
    sorted.remove(place.at);
    *count = sorted.count;
    return 1;
}

int32_t deleteWithContext(void *array, int32_t *count, int32_t size, const void *key, VxCmp4Fn compare,
                          VxDelFn onDelete, void *c1, void *c2, Search search)
{
    if (!compare)
        return 0;
    return deleteRecord(
        array, count, size, search, [&](const void *other) { return compare(c1, c2, key, other); },
        [&](void *record) {
            if (onDelete)
                onDelete(c1, c2, record);
        });
}

/** The order of pair tables: the largest key first. */
int32_t compareKeys(const void *a, const void *b)
{
    int32_t x = static_cast<const VxPair *>(a)->key;
    int32_t y = static_cast<const VxPair *>(b)->key;
    return (x < y) - (x > y);
}

bool makeRoom(VxPairTable &table)
{
    if (table.count < table.capacity)
        return true;
    int64_t capacity = int64_t{table.count} + table.increment;
    int64_t bytes = capacity * static_cast<int64_t>(sizeof(VxPair));
    if (table.increment < 1 || bytes > std::numeric_limits<int32_t>::max())
        return false;
    void *pairs = table.pairs;
    if (VxMemResize(static_cast<int32_t>(bytes), &pairs))
        return false;
    table.pairs = static_cast<VxPair *>(pairs);
    table.capacity = static_cast<int32_t>(capacity);
    return true;
}

}

}

using namespace vx::containers;

int32_t VxSortFind(void *array, int32_t count, int32_t size, const void *key, VxCmpFn compare, void **record)
{
    if (!compare)
        return 0;
    return findRecord(array, count, size, Search::binary, record,
                      [&](const void *other) { return compare(key, other); });
}

int32_t VxSortFind2(void *array, int32_t count, int32_t size, const void *key, VxCmp4Fn compare,
                    void **record, void *c1, void *c2)
{
    if (!compare)
        return 0;
    return findRecord(array, count, size, Search::binary, record,
                      [&](const void *other) { return compare(c1, c2, key, other); });
}

int32_t VxSortFindForNL(void *array, int32_t count, int32_t size, const void *key, VxCmp4Fn compare,
                        void **record, void *c1, void *c2)
{
    if (!compare)
        return 0;
    return findRecord(array, count, size, Search::all, record,
                      [&](const void *other) { return compare(c1, c2, key, other); });
}

int32_t VxSortIns(void *array, int32_t *count, int32_t size, const void *record, VxCmpFn compare)
{
    return insertRecord(array, count, size, record, compare, Search::binary, Equals::kept);
}

int32_t VxSortIns2(void *array, int32_t *count, int32_t size, const void *record, VxCmpFn compare)
{
    return insertRecord(array, count, size, record, compare, Search::binary, Equals::refused);
}

int32_t VxSortInsForNL(void *array, int32_t *count, int32_t size, const void *record, VxCmpFn compare)
{
    return insertRecord(array, count, size, record, compare, Search::all, Equals::kept);
}

int32_t VxSortDel(void *array, int32_t *count, int32_t size, const void *key, VxCmpFn compare)
{
    if (!compare)
        return 0;
    return deleteRecord(
        array, count, size, Search::binary, [&](const void *other) { return compare(key, other); },
        [](void *) {});
}

int32_t VxSortDel2(void *array, int32_t *count, int32_t size, const void *key, VxCmp4Fn compare,
                   VxDelFn onDelete, void *c1, void *c2)
{
    return deleteWithContext(array, count, size, key, compare, onDelete, c1, c2, Search::binary);
}

int32_t VxSortDelForNL(void *array, int32_t *count, int32_t size, const void *key, VxCmp4Fn compare,
                       VxDelFn onDelete, void *c1, void *c2)
{
    return deleteWithContext(array, count, size, key, compare, onDelete, c1, c2, Search::all);
}

void VxSortInt(int32_t *array, int32_t n)
{
    if (array && n > 1)
        std::sort(array, array + n, std::greater<>());
}

uint32_t VxPairAdd(VxPairTable *table, int32_t key, int32_t value)
{
    if (!table || !makeRoom(*table))
        return 1;
    VxPair pair{key, value};
    VxSortIns(table->pairs, &table->count, sizeof pair, &pair, compareKeys);
    table->changed = 1;
    return 0;
}

int32_t VxPairIsOnList(VxPairTable *table, int32_t key, int32_t *value)
{
    if (value)
        *value = 0;
    if (!table)
        return 0;
    VxPair sought{key, 0};
    void *pair = nullptr;
    if (!VxSortFind(table->pairs, table->count, sizeof sought, &sought, compareKeys, &pair))
        return 0;
    if (value)
        *value = static_cast<VxPair *>(pair)->value;
    return 1;
}
