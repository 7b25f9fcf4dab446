#pragma once

// The free lists of an area.
//
// A list's head begins with a link to its first block, as a free block does
// with one to the next.

#include "heap/pool_area.h"

namespace vx::heap {

static_assert(sizeof(VxHsmHead) == unitBytes);

inline Payload headOf(const AreaState &area, int32_t list)
{
    return area.heads + static_cast<uint32_t>(list) * sizeof(VxHsmHead);
}

/** Make a free block of `payload` bytes at `p`, which `self` names, and put it at the front of its list. */
inline void pushFree(AreaState &area, Link self, Payload p, int32_t payload)
{
    setFree(p, payload);
    int32_t list = listOf(payload);
    Payload head = headOf(area, list);
    Link next = nextOf(head);
    setNext(p, next);
    setBack(p, area.headsLink + static_cast<Link>(list));
    setBack(payloadOf(next), self);
    setNext(head, self);
    area.mayHave |= uint64_t{1} << list;
}

inline void unlinkFree(Payload p)
{
    Link next = nextOf(p);
    Link back = backOf(p);
    setBack(payloadOf(next), back);
    setNext(payloadOf(back), next);
}

}
