#pragma once

// In which order parameters that refer to each other can be evaluated.

#include <cstdint>
#include <vector>

namespace vxsh {

/** Parameters that need each other, so that none of them can come first. */
struct Circle {
    /** A shortest way round: each needs the next, the last the first. Begins with the lowest. */
    std::vector<uint32_t> path;
    /** Those caught in longer ways through the same parameters. */
    std::vector<uint32_t> others;
};

struct DependencyOrder {
    std::vector<uint32_t> sequence; ///< each behind all that it needs; none that is in a circle
    std::vector<Circle> circles;
};

/**
 * @param needs  for each node the nodes it needs; a node twice or itself among them is allowed
 */
DependencyOrder dependencyOrder(const std::vector<std::vector<uint32_t>> &needs);

}
