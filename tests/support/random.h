#pragma once

#include <random>
#include <string>

#include <gtest/gtest.h>

namespace vx::test {

/** Random numbers; a failure while they live names their seed. */
class Random : public std::mt19937 {
public:
    explicit Random(unsigned seed = std::random_device{}())
        : std::mt19937(seed), trace_(__FILE__, __LINE__, "seed " + std::to_string(seed))
    {
    }

    /** One of these. */
    template <typename Range> const auto &one(const Range &of)
    {
        return *std::next(std::begin(of), static_cast<std::ptrdiff_t>((*this)() % std::size(of)));
    }

    /** From `least` to `most` of these, one behind the other. */
    template <typename Range> std::string text(const Range &pieces, size_t least, size_t most)
    {
        std::string all;
        for (size_t n = least + (*this)() % (most + 1 - least); n > 0; --n)
            all += one(pieces);
        return all;
    }

private:
    testing::ScopedTrace trace_;
};

}
