#pragma once

#include "placement/Cells.h"
#include "placement/Motion.h"
#include "placement/PointModel.h"
#include "placement/Refinement.h"

#include <span>

namespace placement {

/// Square of the root mean square distance between a model's points in two poses, Å²: by its covariance C,
/// |a - b|² + 2·(tr C - tr(Ra·C·Rbᵀ)), whatever the number of points. Of a model that has equal turns, the
/// least.
double SquaredRmsd(const PointModel &model, const Pose &a, const Pose &b);

/// Poses that differ from one another by more than an RMSD; where there are `mates`, motions that lay the map
/// upon itself, from one another's copies too.
class DistinctPlaces {
public:
    /// The mates, the motion that moves nothing among them, must outlive this.
    DistinctPlaces(const PointModel &model, double rmsd, std::span<const Motion> mates = {});

    /// Takes the pose unless one that was taken before lies within the RMSD of it.
    bool Add(const Pose &pose);
    std::size_t Size() const { return m_poses.size(); }

private:
    bool IsTaken(const Pose &pose) const;

    const PointModel &m_model;
    double m_rmsd;
    std::span<const Motion> m_mates;
    std::vector<Pose> m_poses;
    Cells m_centres;
};

/// The first poses that are distinct, in their order, at most `maxNumber`.
std::vector<Pose> Distinct(const PointModel &model, std::span<const Pose> poses, double rmsd,
                           std::size_t maxNumber);

/// Likewise of scored poses, best first.
std::vector<ScoredPose> DistinctBest(const PointModel &model, std::vector<ScoredPose> poses, double rmsd,
                                     std::size_t maxNumber, std::span<const Motion> mates = {});

} // namespace placement
