#pragma once

// Records of one type in a public list. Whoever holds the list may have put
// another in its place, so each access checks the size of its elements. Arrays
// are reached without a call, which would show where lists are short.

#include <algorithm>
#include <cstdint>

#include "containers/slots.h"
#include "vx/list.h"

namespace vx::containers {

/** True when the list holds records of type T; else the stop error is filed, or nothing for a null list. */
template <typename T> bool holds(const VxList *list)
{
    if (!list)
        return false;
    if (list->elemSize == static_cast<int32_t>(sizeof(T)))
        return true;
    VxListSizeError();
    return false;
}

/** The record at an index below the list's count, or null. */
template <typename T> T *recordAt(VxList *list, int32_t index)
{
    if (!holds<T>(list) || index < 0 || index >= list->count)
        return nullptr;
    void *record = nullptr;
    if (list->layout == array)
        record = slotAt(*list, index);
    else
        VxListGetPtr(list, index, &record);
    return static_cast<T *>(record);
}

/** Call use(index, record) for each record of a list of them; those side by side are looked up once. */
template <typename T, typename Use> void forEach(VxList &list, Use use)
{
    int32_t run = 1;
    for (int32_t i = 0; i < list.count; i += run) {
        T *record = recordAt<T>(&list, i);
        run = list.layout == array ? std::min(runFrom(list, i), list.count - i) : 1;
        for (int32_t j = 0; record && j < run; ++j)
            use(i + j, record[j]);
    }
}

/** Append a record: 0, or 1 with the list as it was. */
template <typename T> uint32_t append(VxList *list, const T &record)
{
    if (!holds<T>(list))
        return 1;
    if (list->layout == array && list->count < list->capacity) {
        if (void *slot = slotAt(*list, list->count)) {
            *static_cast<T *>(slot) = record;
            ++list->count;
            return 0;
        }
    }
    return VxListSet(list, list->count, &record);
}

}
