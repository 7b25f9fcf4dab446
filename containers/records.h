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
    if (list->elemSize == static_cast<int32_t>(sizeof(T))) [[likely]]
        return true;
    VxListSizeError();
    return false;
}

template <typename T> bool isArrayOf(const VxList *list) noexcept
{
    return list && list->layout == array && list->elemSize == static_cast<int32_t>(sizeof(T));
}

/** The record at an index below the list's count, or null. */
template <typename T> T *recordAt(VxList *list, int32_t index)
{
    if (!holds<T>(list) || index < 0 || index >= list->count)
        return nullptr;
    if (list->layout == array) [[likely]]
        return slotIn<T>(*list, index);
    void *record = nullptr;
    VxListGetPtr(list, index, &record);
    return static_cast<T *>(record);
}

/**
 * Call use(first index, records, n) for each run of records that lie side by side in a list that holds them.
 * False when one could not be had.
 */
template <typename T, typename Use> bool forEachRun(VxList &list, Use use)
{
    bool all = true;
    int32_t run = 1;
    for (int32_t i = 0; i < list.count; i += run) {
        T *records = recordAt<T>(&list, i);
        run = list.layout == array ? std::min(runFrom(list, i), list.count - i) : 1;
        if (records)
            use(i, records, run);
        else
            all = false;
    }
    return all;
}

/** Call use(index, record) for each; false as above. */
template <typename T, typename Use> bool forEach(VxList &list, Use use)
{
    return forEachRun<T>(list, [&](int32_t first, T *records, int32_t n) {
        for (int32_t i = 0; i < n; ++i)
            use(first + i, records[i]);
    });
}

/** Append a record: 0, or 1 with the list as it was. */
template <typename T> uint32_t append(VxList *list, const T &record)
{
    if (!holds<T>(list))
        return 1;
    if (isArrayOf<T>(list) && (list->count < list->capacity || growInPage(*list))) {
        if (T *slot = slotIn<T>(*list, list->count); slot) [[likely]] {
            *slot = record;
            ++list->count;
            return 0;
        }
    }
    return VxListSet(list, list->count, &record);
}

}
