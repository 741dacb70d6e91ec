#include "placement/DistinctPlaces.h"

#include <algorithm>

namespace placement {

double SquaredRmsd(const PointModel &model, const Pose &a, const Pose &b) {
    const Point shift = a.centre - b.centre;
    const Matrix &c = model.covariance;
    double common = 0;
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j) {
            double entry = 0;
            for (std::size_t row = 0; row < 3; ++row)
                entry += a.rotation[3 * row + i] * b.rotation[3 * row + j];
            common += c[3 * i + j] * entry;
        }
    return std::max(0.0, Dot(shift, shift) + 2 * (c[0] + c[4] + c[8] - common));
}

std::size_t DistinctPlaces::CellHash::operator()(const Cell &cell) const {
    // Large odd factors spread neighbouring cells (Teschner et al. 2003).
    return std::size_t(cell[0]) * 73856093u ^ std::size_t(cell[1]) * 19349663u ^
           std::size_t(cell[2]) * 83492791u;
}

DistinctPlaces::DistinctPlaces(const PointModel &model, double rmsd)
    : m_model(model)
    , m_rmsd(rmsd) {}

bool DistinctPlaces::Add(const Pose &pose) {
    const auto cellOf = [&](double x) { return std::int32_t(std::floor(x / m_rmsd)); };
    const Cell home{cellOf(pose.centre.x), cellOf(pose.centre.y), cellOf(pose.centre.z)};
    for (std::int32_t z = -1; z <= 1; ++z)
        for (std::int32_t y = -1; y <= 1; ++y)
            for (std::int32_t x = -1; x <= 1; ++x) {
                const auto cell = m_cells.find({home[0] + x, home[1] + y, home[2] + z});
                if (cell == m_cells.end())
                    continue;
                for (const std::size_t other : cell->second)
                    if (SquaredRmsd(m_model, pose, m_poses[other]) < m_rmsd * m_rmsd)
                        return false;
            }
    m_cells[home].push_back(m_poses.size());
    m_poses.push_back(pose);
    return true;
}

std::vector<Pose> Distinct(const PointModel &model, std::span<const Pose> poses, double rmsd,
                           std::size_t most) {
    DistinctPlaces places(model, rmsd);
    std::vector<Pose> distinct;
    for (const Pose &pose : poses) {
        if (distinct.size() == most)
            break;
        if (places.Add(pose))
            distinct.push_back(pose);
    }
    return distinct;
}

std::vector<ScoredPose> DistinctBest(const PointModel &model, std::vector<ScoredPose> poses, double rmsd,
                                     std::size_t most) {
    std::ranges::stable_sort(poses, std::ranges::greater(), &ScoredPose::score);
    DistinctPlaces places(model, rmsd);
    std::vector<ScoredPose> distinct;
    for (const ScoredPose &pose : poses) {
        if (distinct.size() == most)
            break;
        if (places.Add(pose.pose))
            distinct.push_back(pose);
    }
    return distinct;
}

} // namespace placement
