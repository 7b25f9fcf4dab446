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

    bool empty() const noexcept { return size_ == 0; }
    int32_t size() const noexcept { return size_; }
    T &top() noexcept { return data_[size_ - 1]; }
    T &below() noexcept { return data_[size_ - 2]; }
    T &operator[](int32_t index) noexcept { return data_[index]; }
    void pop() noexcept { --size_; }

    /** Room for one more, its content open; null when there is no memory. */
    T *push() noexcept
    {
        if (size_ == capacity_ && !grow())
            return nullptr;
        return &data_[size_++];
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
        constexpr int64_t most = INT32_MAX;
        int64_t bytes = int64_t{capacity_} * 2 * static_cast<int64_t>(sizeof(T));
        void *block = nullptr;
        if (bytes > most || VxMemAlloc(static_cast<int32_t>(bytes), &block) != 0)
            return false;
        std::memcpy(block, data_, static_cast<size_t>(size_) * sizeof(T));
        release();
        data_ = static_cast<T *>(block);
        capacity_ *= 2;
        return true;
    }

    void release() noexcept
    {
        if (data_ == own_)
            return;
        void *block = data_;
        VxMemFree(&block);
    }

    T *data_ = own_;
    int32_t size_ = 0;
    int32_t capacity_ = N;
    T own_[static_cast<size_t>(N)];
};

}
