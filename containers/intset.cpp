// Integer sets: a list of values, and for larger ones an index of keys.

#include "vx/intset.h"

#include <cstring>

#include "containers/keyed_store.h"
#include "containers/records.h"
#include "vx/mem.h"

namespace vx::containers {

namespace {

constexpr int32_t valueSize = sizeof(int32_t);
constexpr int32_t keySize = 1;
constexpr uint8_t present = 1; ///< what every key of an index holds
constexpr int32_t mostWithoutIndex = 7;
constexpr int32_t mostUnoptimized = 6;

bool hasRightSizes(const VxIntSet &set)
{
    if ((set.values && set.values->elemSize != valueSize) || (set.index && set.index->elemSize != keySize)) {
        VxListSizeError();
        return false;
    }
    return true;
}

bool isIndexed(const VxIntSet &set, int32_t value)
{
    return keyedNode(*set.index, value) != nullptr;
}

/** True for values in one block, which are looked through here: a walk would cost several times as much. */
bool isBlock(const VxList &values) noexcept
{
    return (values.layout == array || values.layout == wrapped) && values.pageLevel == 0;
}

/** Compares with four values at once. */
bool isAmongFour(const int32_t *values, int32_t value) noexcept
{
    using Four [[gnu::vector_size(16)]] = int32_t;
    using Two [[gnu::vector_size(16)]] = int64_t;
    Four four;
    std::memcpy(&four, values, sizeof four);
    auto same = reinterpret_cast<Two>(four == value);
    return same[0] | same[1];
}

bool isInBlock(const VxList &values, int32_t value) noexcept
{
    auto first = static_cast<const int32_t *>(values.data);
    if (values.count >= 4 && values.count <= 8)
        return isAmongFour(first, value) || isAmongFour(first + values.count - 4, value);
    for (const int32_t *at = first, *end = first + values.count; at != end; ++at)
        if (*at == value)
            return true;
    return false;
}

bool contains(const VxIntSet &set, int32_t value)
{
    if (set.index)
        return isIndexed(set, value);
    if (!set.values)
        return false;
    return isBlock(*set.values) ? isInBlock(*set.values, value) : VxListIndexOf(set.values, &value, 0) != -1;
}

uint32_t addUnindexed(VxList &values, int32_t value, bool &added)
{
    int32_t before = values.count;
    int32_t at = 0;
    uint32_t failed = VxListSetUnique(&values, &value, &at);
    added = values.count > before;
    return failed;
}

/** False for want of memory. */
bool addKey(VxList &index, int32_t value, bool &added)
{
    auto [key, made] = keyedElementMade(index, value);
    if (!key)
        return false;
    *static_cast<uint8_t *>(key) = present;
    added = made;
    return true;
}

/** Add to the index and to the values, or to neither. */
uint32_t addIndexed(VxIntSet &set, int32_t value, bool &added)
{
    VxList &index = *set.index;
    int32_t highest = index.capacity;
    if (!addKey(index, value, added))
        return 1;
    if (!added)
        return 0;
    if (set.values && append(set.values, value)) {
        VxListDelElem(&index, value, value);
        index.capacity = highest;
        added = false;
        return 1;
    }
    return 0;
}

uint32_t fill(VxList &index, VxList &values)
{
    VxListIter walk;
    VxListItrInit2(&values, 0, &walk);
    int32_t value = 0;
    int32_t end = 0;
    bool added = false;
    while ((end = VxListItr(&walk, &value)) == 0)
        if (!addKey(index, value, added))
            return 1;
    return end != -1;
}

uint32_t buildIndex(VxIntSet &set)
{
    if (VxListMk(keyed, keySize, 1, 1, nullptr, &set.index))
        return 1;
    return set.values && set.values->count > 0 ? fill(*set.index, *set.values) : 0;
}

/** The member at which a walk stands; `element` is what its list holds there. */
int32_t *member(VxListIter &iter, void *element) noexcept
{
    return iter.list->elemSize == keySize ? &iter.index : static_cast<int32_t *>(element);
}

}

}

using namespace vx::containers;

uint32_t VxIntSetInit(VxList *values, VxIntSet *set)
{
    if (!set)
        return 1;
    *set = {values, nullptr};
    return 0;
}

uint32_t VxIntSetMk(VxList *values, VxIntSet **set)
{
    if (!set)
        return 1;
    *set = nullptr;
    void *record = nullptr;
    if (VxMemAlloc(sizeof(VxIntSet), &record))
        return 1;
    *set = static_cast<VxIntSet *>(record);
    return VxIntSetInit(values, *set);
}

uint32_t VxIntSetDel(VxIntSet **set)
{
    if (!set || !*set)
        return set == nullptr;
    VxListDel(&(*set)->index);
    void *record = *set;
    *set = nullptr;
    return VxMemFree(&record);
}

uint32_t VxIntSetPurge(VxIntSet *set)
{
    if (!set)
        return 1;
    return set->index ? VxListDel(&set->index) : 0;
}

uint32_t VxIntSetReset(VxIntSet *set)
{
    if (!set)
        return 1;
    uint32_t valuesFailed = set->values ? VxListReset(set->values) : 0;
    uint32_t indexFailed = set->index ? VxListReset(set->index) : 0;
    return valuesFailed || indexFailed;
}

uint32_t VxIntSetOptimize(VxIntSet *set)
{
    if (!set || !hasRightSizes(*set))
        return 1;
    bool worthwhile = !set->index && set->values && set->values->count > mostUnoptimized;
    return worthwhile ? buildIndex(*set) : 0;
}

int32_t VxIntSetEmpty(VxIntSet *set)
{
    if (!set)
        return 1;
    const VxList *list = set->values ? set->values : set->index;
    return !list || list->count == 0;
}

int32_t VxIntSetContains(VxIntSet *set, int32_t value)
{
    if (!set)
        return 0;
    // What most sets are comes first, and without a call.
    const VxList *values = set->values;
    if (!set->index && values && values->elemSize == valueSize && isBlock(*values))
        return isInBlock(*values, value);
    return hasRightSizes(*set) && contains(*set, value);
}

uint32_t VxIntSetAdd(VxIntSet *set, int32_t value, int32_t *added)
{
    if (added)
        *added = 0;
    if (!set || !hasRightSizes(*set))
        return 1;
    bool isNew = false;
    uint32_t failed = 0;
    if (!set->index && set->values && set->values->count < mostWithoutIndex)
        failed = addUnindexed(*set->values, value, isNew);
    else
        failed = (!set->index && buildIndex(*set)) || addIndexed(*set, value, isNew);
    if (added)
        *added = isNew;
    return failed;
}

uint32_t VxIntSetDelVal(VxIntSet *set, int32_t value)
{
    if (!set || !hasRightSizes(*set) || !contains(*set, value))
        return 1;
    uint32_t indexFailed = set->index ? VxListDelElem(set->index, value, value) : 0;
    uint32_t valuesFailed = set->values ? VxListDelVal(set->values, &value) : 0;
    return indexFailed || valuesFailed;
}

uint32_t VxIntSetKeyList(VxIntSet *set, VxList **index)
{
    if (!index)
        return 1;
    *index = nullptr;
    if (!set || !hasRightSizes(*set) || (!set->index && buildIndex(*set)))
        return 1;
    *index = set->index;
    return 0;
}

uint32_t VxIntSetItrInit(VxIntSet *set, int32_t direction, VxListIter *iter)
{
    if (!iter)
        return 1;
    *iter = {};
    if (!set || !hasRightSizes(*set))
        return 1;
    VxList *list = set->values ? set->values : set->index;
    return list ? VxListItrInit2(list, direction, iter) : 0;
}

int32_t VxIntSetItr(VxListIter *iter, int32_t *value)
{
    if (!iter || !value)
        return 1;
    if (!iter->list)
        return -1;
    void *element = nullptr;
    int32_t end = VxListItrPtr(iter, &element);
    if (end == 0)
        *value = *member(*iter, element);
    return end;
}

int32_t *VxIntSetBegin(VxIntSet *set, VxListIter *iter)
{
    return VxIntSetItrInit(set, 0, iter) ? nullptr : VxIntSetIncr(iter);
}

int32_t *VxIntSetIncr(VxListIter *iter)
{
    void *element = nullptr;
    if (!iter || !iter->list || VxListItrPtr(iter, &element))
        return nullptr;
    return member(*iter, element);
}
