#pragma once

#include "fit/Preparation.h"
#include "solutions/Solution.h"

#include <QTextStream>

namespace solutions {
class FitLog;
}

namespace search {

/// Scores the poses of a prepared fit one by one, as `DoScores` defines it: a rotation of the target about
/// its centre, then an offset.
class PoseScorer {
public:
    /// The preparation must outlive it.
    explicit PoseScorer(const fit::Preparation &fit);

    /// Sets the rotation of the poses that follow; the identity at first.
    void Rotate(const VARNO::Quaternion &rotation);

    /// The pose at an offset (Å): the solution with its restraint distances, or a rejected one.
    SolutionScore Score(const VARNO::Vertex &offset);
    /// The same, and writes an accepted pose to the log if that is writing.
    SolutionScore Score(const VARNO::Vertex &offset, solutions::FitLog &log);

private:
    SolutionScore Score(const VARNO::Vertex &offset, QTextStream &log, bool logging);

    const fit::Preparation &m_fit;
    VARNO::Quaternion m_rotation;
    VARNO::Vertex m_centring; ///< brings the rotated target's centre back to its place
    std::vector<TaggedPoint> m_moved;
    std::vector<double> m_distances;
    QTextStream m_noLog;
};

} // namespace search
