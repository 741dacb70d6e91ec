#include "placement/Connections.h"

#include <algorithm>
#include <vector>

namespace placement {

namespace {

/// Where an end lies, once for each copy of its part.
std::vector<Point> PositionsOf(const ConnectionEnd &end, std::span<const PartInPlace> copies) {
    if (!end.part)
        return {end.position};
    std::vector<Point> positions;
    for (const PartInPlace &copy : copies)
        if (copy.part == *end.part)
            positions.push_back(copy.motion * end.position);
    return positions;
}

} // namespace

std::optional<double> ShortestDistance(const Connection &connection, std::span<const PartInPlace> copies) {
    std::optional<double> shortest;
    const std::vector<Point> others = PositionsOf(connection.b, copies);
    for (const Point &a : PositionsOf(connection.a, copies))
        for (const Point &b : others)
            shortest = std::min(Length(a - b), shortest.value_or(Length(a - b)));
    return shortest;
}

std::size_t NumberHeld(std::span<const Connection> connections, std::span<const PartInPlace> copies) {
    return std::size_t(std::ranges::count_if(connections, [&](const Connection &connection) {
        const std::optional<double> distance = ShortestDistance(connection, copies);
        return distance && *distance <= connection.maxDistance;
    }));
}

} // namespace placement
