#include "placement/DistinctPlaces.h"

#include <algorithm>

namespace placement {

namespace {

/// The mean over the points p of the dot product of a·p and b·p, from the points' covariance.
double CommonSpread(const Matrix &covariance, const Matrix &a, const Matrix &b) {
    double common = 0;
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j) {
            double entry = 0;
            for (std::size_t row = 0; row < 3; ++row)
                entry += a[3 * row + i] * b[3 * row + j];
            common += covariance[3 * i + j] * entry;
        }
    return common;
}

} // namespace

double SquaredRmsd(const PointModel &model, const Pose &a, const Pose &b) {
    const Point shift = a.centre - b.centre;
    const Matrix &c = model.covariance;
    double common = CommonSpread(c, a.rotation, b.rotation);
    for (const Matrix &turn : std::span(model.equalTurns).subspan(1))
        common = std::max(common, CommonSpread(c, a.rotation, b.rotation * turn));
    return std::max(0.0, Dot(shift, shift) + 2 * (c[0] + c[4] + c[8] - common));
}

DistinctPlaces::DistinctPlaces(const PointModel &model, double rmsd, std::span<const Motion> mates)
    : m_model(model)
    , m_rmsd(rmsd)
    , m_mates(mates)
    , m_centres(rmsd) {}

bool DistinctPlaces::Add(const Pose &pose) {
    if (m_mates.empty() ? IsTaken(pose) : std::ranges::any_of(m_mates, [&](const Motion &mate) {
            return IsTaken(Moved(mate, pose));
        }))
        return false;
    m_centres.Add(pose.centre, m_poses.size());
    m_poses.push_back(pose);
    return true;
}

bool DistinctPlaces::IsTaken(const Pose &pose) const {
    // Centres are never farther apart than the RMSD.
    return m_centres.AnyNear(pose.centre, [&](std::size_t other) {
        return SquaredRmsd(m_model, pose, m_poses[other]) < m_rmsd * m_rmsd;
    });
}

std::vector<Pose> Distinct(const PointModel &model, std::span<const Pose> poses, double rmsd,
                           std::size_t maxNumber) {
    DistinctPlaces places(model, rmsd);
    std::vector<Pose> distinct;
    for (const Pose &pose : poses) {
        if (distinct.size() == maxNumber)
            break;
        if (places.Add(pose))
            distinct.push_back(pose);
    }
    return distinct;
}

std::vector<ScoredPose> DistinctBest(const PointModel &model, std::vector<ScoredPose> poses, double rmsd,
                                     std::size_t maxNumber, std::span<const Motion> mates) {
    std::ranges::stable_sort(poses, std::ranges::greater(), &ScoredPose::score);
    DistinctPlaces places(model, rmsd, mates);
    std::vector<ScoredPose> distinct;
    for (const ScoredPose &pose : poses) {
        if (distinct.size() == maxNumber)
            break;
        if (places.Add(pose.pose))
            distinct.push_back(pose);
    }
    return distinct;
}

} // namespace placement
