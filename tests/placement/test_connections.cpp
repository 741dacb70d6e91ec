#include "placement/Connections.h"

#include <gtest/gtest.h>

using namespace placement;

namespace {

PartInPlace At(std::size_t part, const Point &translation) {
    return {part, {RotationBy({}), translation}};
}

} // namespace

TEST(Connections, TheShortestDistanceIsThatOfAnyTwoCopies) {
    const Connection connection{{0, {1, 0, 0}}, {1, {0, 2, 0}}, 10};
    const std::vector<PartInPlace> copies{At(0, {}), At(0, {50, 0, 0}), At(1, {55, -2, 0})};
    EXPECT_NEAR(*ShortestDistance(connection, copies), 4, 1e-9);
    EXPECT_FALSE(ShortestDistance(connection, std::span(copies).first(2)));
}

TEST(Connections, AnEndMayStandAlready) {
    const Connection connection{{std::nullopt, {10, 0, 0}}, {0, {0, 0, 3}}, 5};
    const std::vector<PartInPlace> copies{{0, {RotationBy({0, std::acos(-1.0), 0}), {10, 0, 0}}}};
    EXPECT_NEAR(*ShortestDistance(connection, copies), 3, 1e-9);
}

TEST(Connections, ThoseThatHoldAreCounted) {
    const std::vector<Connection> connections{
        {{0, {}}, {1, {}}, 10}, {{0, {}}, {1, {}}, 20}, {{0, {}}, {2, {}}, 1000}};
    const std::vector<PartInPlace> copies{At(0, {}), At(1, {0, 15, 0})};
    EXPECT_EQ(NumberHeld(connections, copies), 1u);
    EXPECT_EQ(NumberHeld(connections, {}), 0u);
}
