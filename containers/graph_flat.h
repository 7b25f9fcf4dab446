#pragma once

// A graph as flat arrays of numbers, for algorithms that go over all of it.

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

#include "containers/memory.h"
#include "vx/graph.h"

namespace vx::containers {

/** An array of records, not set; std::bad_alloc when there is no memory. */
template <typename T> class Room {
public:
    Room() = default;
    explicit Room(int32_t n) : items_(std::make_unique_for_overwrite<T[]>(static_cast<size_t>(n))), size_(n)
    {
        heap::preferLargePages(items_.get(), static_cast<size_t>(n) * sizeof(T));
    }

    static Room zeros(int32_t n)
    {
        Room room(n);
        std::fill_n(room.items_.get(), n, T{});
        return room;
    }

    T &operator[](int32_t i) const noexcept { return items_.get()[i]; }

    /** Make it n records at least; the first `kept` stay. */
    void reserve(int64_t n, int32_t kept)
    {
        if (n <= size_)
            return;
        if (n > INT32_MAX / 2)
            throw std::bad_alloc();
        Room larger(static_cast<int32_t>(2 * n));
        std::copy_n(items_.get(), kept, larger.items_.get());
        *this = std::move(larger);
    }

private:
    std::unique_ptr<T[]> items_;
    int32_t size_ = 0;
};

/** Of an edge; none for one that was removed. */
struct Ends {
    int32_t from;
    int32_t to;
};

// A walk comes to nodes by chance, and what it needs there should stay in a
// cache: so all is apart that it does not need at each step.

struct FlatGraph {
    int32_t nodes = 0;
    int32_t edges = 0;
    Room<bool> removed;  ///< nodes
    Room<Ends> ends;     ///< of each edge
    Room<int32_t> start; ///< the ways out of node i are those from start[i] to start[i + 1]
    Room<int32_t> to;    ///< where ways lead, in the order of each node's list; it may be a removed node
    Room<int32_t> edge;  ///< over which a way goes
    /** Each edge is known to stand in the list of the node that it leaves, and in no list but its ends'. */
    bool regular = false;
};

/** Read a graph: false when it is none, std::bad_alloc for want of memory. */
bool flatten(VxGraph &graph, FlatGraph &flat);

}
