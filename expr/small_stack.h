#pragma once

// A stack that lies in its owner until it outgrows `N` elements, and then in
// the toolkit's memory. Formulas are shallow nearly always, but their depth is
// the user's: nothing here recurses on it.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "vx/mem.h"

namespace vx::expr {

template <typename T, int32_t N> class SmallStack {
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_default_constructible_v<T>);

public:
    SmallStack() noexcept = default;
    ~SmallStack() { release(); }
    SmallStack(const SmallStack &) = delete;
    SmallStack &operator=(const SmallStack &) = delete;

    bool empty() const noexcept { return next_ == begin_; }
    int32_t size() const noexcept { return static_cast<int32_t>(next_ - begin_); }
    T &top() noexcept { return next_[-1]; }
    T &below() noexcept { return next_[-2]; }
    T &operator[](int32_t index) noexcept { return begin_[index]; }
    void pop() noexcept { --next_; }

    /** Room for one more, its content open; null when there is no memory. */
    T *push() noexcept
    {
        if (next_ == end_ && !grow())
            return nullptr;
        return next_++;
    }

    bool push(const T &element) noexcept
    {
        T *place = push();
        if (!place)
            return false;
        *place = element;
        return true;
    }

private:
    bool grow() noexcept
    {
        int64_t capacity = 2 * (end_ - begin_);
        int64_t bytes = capacity * static_cast<int64_t>(sizeof(T));
        void *block = nullptr;
        if (bytes > INT32_MAX || VxMemAlloc(static_cast<int32_t>(bytes), &block) != 0)
            return false;
        auto count = static_cast<size_t>(next_ - begin_);
        std::memcpy(block, begin_, count * sizeof(T));
        release();
        begin_ = static_cast<T *>(block);
        next_ = begin_ + count;
        end_ = begin_ + capacity;
        return true;
    }

    void release() noexcept
    {
        if (begin_ == own_)
            return;
        void *block = begin_;
        VxMemFree(&block);
    }

    T *begin_ = own_;
    T *next_ = own_;
    T *end_ = own_ + N;
    T own_[static_cast<size_t>(N)];
};

}
