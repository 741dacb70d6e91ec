#include "placement/OccupiedSpace.h"

#include "placement/Constants.h"

#include <algorithm>

namespace placement {

namespace {

/// A number for each cell of a box of 2^21 cells along each edge, far more than a map has.
std::uint64_t CellOf(const Point &p) {
    const auto along = [](double x) {
        constexpr std::int64_t bits = 21, half = std::int64_t(1) << (bits - 1);
        return std::uint64_t(std::clamp(std::int64_t(std::floor(x / overlapCell)), -half, half - 1) + half);
    };
    return along(p.x) | along(p.y) << 21 | along(p.z) << 42;
}

} // namespace

void OccupiedSpace::Add(const PointModel &model, const Pose &pose) {
    for (const Point &p : model.points)
        m_cells.insert(CellOf(pose.rotation * p + pose.centre));
}

double OccupiedSpace::Overlap(const PointModel &model, const Pose &pose) const {
    const auto inside = std::ranges::count_if(model.points, [&](const Point &p) {
        return m_cells.contains(CellOf(pose.rotation * p + pose.centre));
    });
    return double(inside) / double(model.points.size());
}

} // namespace placement
