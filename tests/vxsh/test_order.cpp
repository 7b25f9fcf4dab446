#include "tests/support/test.h"
#include "tools/vxsh/order.h"

namespace vxsh {

namespace {

using Needs = std::vector<std::vector<uint32_t>>;

/** reaches[a][b]: the way from a to b has this many steps; 0 for none. By Floyd and Warshall's method. */
std::vector<std::vector<size_t>> distances(const Needs &needs)
{
    size_t n = needs.size();
    std::vector<std::vector<size_t>> d(n, std::vector<size_t>(n, 0));
    for (size_t a = 0; a < n; ++a)
        for (uint32_t b : needs[a])
            d[a][b] = 1;
    for (size_t via = 0; via < n; ++via)
        for (size_t a = 0; a < n; ++a)
            for (size_t b = 0; b < n; ++b)
                if (d[a][via] && d[via][b] && (!d[a][b] || d[a][via] + d[via][b] < d[a][b]))
                    d[a][b] = d[a][via] + d[via][b];
    return d;
}

void expectRight(const Needs &needs)
{
    auto far = distances(needs);
    DependencyOrder order = dependencyOrder(needs);
    std::set<uint32_t> placed;
    for (uint32_t node : order.sequence) {
        EXPECT_EQ(far[node][node], 0u) << "in a circle: " << node;
        for (uint32_t needed : needs[node])
            EXPECT_TRUE(placed.count(needed) || far[needed][needed]) << needed << " comes after " << node;
        EXPECT_TRUE(placed.insert(node).second);
    }
    for (const Circle &circle : order.circles) {
        ASSERT_FALSE(circle.path.empty());
        size_t shortest = needs.size();
        std::vector<uint32_t> members = circle.path;
        members.insert(members.end(), circle.others.begin(), circle.others.end());
        for (uint32_t member : members) {
            EXPECT_TRUE(placed.insert(member).second);
            EXPECT_TRUE(far[member][members.front()]);
            shortest = std::min(shortest, far[member][member]);
        }
        EXPECT_EQ(circle.path.size(), shortest);
        for (size_t i = 0; i < circle.path.size(); ++i)
            EXPECT_THAT(needs[circle.path[i]], testing::Contains(circle.path[(i + 1) % circle.path.size()]));
        EXPECT_EQ(circle.path.front(), std::ranges::min(circle.path));
    }
    EXPECT_EQ(placed.size(), needs.size());
}

}

TEST(Order, agreesWithAllShortestWaysOfRandomGraphs)
{
    vx::test::Random random;
    for (int round = 0; round < 3000 && !HasFailure(); ++round) {
        Needs needs(1 + random() % 9);
        size_t edges = random() % (2 * needs.size());
        for (size_t i = 0; i < edges; ++i)
            needs[random() % needs.size()].push_back(static_cast<uint32_t>(random() % needs.size()));
        expectRight(needs);
    }
}

}
