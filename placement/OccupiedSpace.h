#pragma once

#include "placement/PointModel.h"

#include <cstdint>
#include <unordered_set>

namespace placement {

/// The space that placed models take up, in cells of 4 Å: about half of those inside a protein hold one of
/// its points.
class OccupiedSpace {
public:
    void Add(const PointModel &model, const Pose &pose);

    /// The part of the model's points that lie in cells taken up before, from 0 to 1.
    double Overlap(const PointModel &model, const Pose &pose) const;

private:
    std::unordered_set<std::uint64_t> m_cells;
};

} // namespace placement
