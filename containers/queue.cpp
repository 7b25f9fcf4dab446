// Queues and stacks of items of any size.

#include "vx/queue.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <new>

#include "containers/memory.h"

namespace vx::containers {

namespace {

/** Small items lie in the item itself. */
struct Item {
    static constexpr int32_t inside = 4;

    int32_t count;
    union {
        char bytes[inside];
        void *block;
    };

    const void *data() const noexcept { return count <= inside ? bytes : block; }
};

using Items = std::deque<Item>;

Items &itemsOf(const VxQueue *queue) noexcept
{
    return *static_cast<Items *>(queue->items);
}

bool copyIn(Item &item, int32_t count, const void *element)
{
    item.count = count;
    if (count <= Item::inside) {
        std::memcpy(item.bytes, element, static_cast<size_t>(count));
        return true;
    }
    return VxMemDup(count, element, &item.block) == 0;
}

void release(Item &item) noexcept
{
    if (item.count > Item::inside)
        VxMemFree(&item.block);
}

uint32_t push(VxQueue *queue, const void *element, bool front)
{
    if (!queue || !queue->items || !element || queue->elemSize < 1)
        return 1;
    Item item;
    if (!copyIn(item, queue->elemSize, element))
        return 1;
    try {
        if (front)
            itemsOf(queue).push_front(item);
        else
            itemsOf(queue).push_back(item);
    } catch (const std::bad_alloc &) {
        release(item);
        return 1;
    }
    return 0;
}

uint32_t pop(VxQueue *queue, void *buffer, int32_t size, bool front)
{
    if (!queue || !queue->items || !buffer || size < 0 || itemsOf(queue).empty())
        return 1;
    Items &items = itemsOf(queue);
    Item &item = front ? items.front() : items.back();
    std::memcpy(buffer, item.data(), static_cast<size_t>(std::min(size, item.count)));
    release(item);
    if (front)
        items.pop_front();
    else
        items.pop_back();
    return 0;
}

}

}

using namespace vx::containers;

uint32_t VxQueueMk(int32_t elemSize, VxQueue **made)
{
    constexpr uint32_t noRecord = 2;
    if (!made)
        return 1;
    *made = nullptr;
    if (elemSize < 1)
        return 1;
    Block<VxQueue> queue = allocateZero<VxQueue>(1);
    if (!queue)
        return noRecord;
    queue->elemSize = elemSize;
    try {
        queue->items = new Items;
    } catch (const std::bad_alloc &) {
        return 1;
    }
    *made = queue.release();
    return 0;
}

uint32_t VxQueueDel(VxQueue **queue)
{
    if (!queue)
        return 1;
    if (!*queue)
        return 0;
    auto items = static_cast<Items *>((*queue)->items);
    if (items)
        std::for_each(items->begin(), items->end(), release);
    delete items;
    void *record = *queue;
    *queue = nullptr;
    return VxMemFree(&record);
}

uint32_t VxQueuePush(VxQueue *queue, const void *element)
{
    return push(queue, element, false);
}

uint32_t VxStackPush(VxStack *stack, const void *element)
{
    return push(stack, element, true);
}

uint32_t VxQueuePop(VxQueue *queue, void *buffer, int32_t size)
{
    return pop(queue, buffer, size, true);
}

uint32_t VxStackPop(VxStack *stack, void *buffer, int32_t size)
{
    return pop(stack, buffer, size, true);
}

uint32_t VxQueueShorten(VxQueue *queue, void *buffer, int32_t size)
{
    return pop(queue, buffer, size, false);
}
