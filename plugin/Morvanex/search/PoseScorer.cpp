#include "search/PoseScorer.h"

#include "search/Scoring.h"
#include "solutions/FitLog.h"

using namespace VARNO;

namespace search {

PoseScorer::PoseScorer(const fit::Preparation &fit)
    : m_fit(fit)
    , m_moved(fit.target.points.size())
    , m_distances(fit.target.restraints.size()) {
    Rotate(Quaternion());
}

void PoseScorer::Rotate(const Quaternion &rotation) {
    m_rotation = rotation;
    m_centring = m_fit.target.centre - rotation * m_fit.target.centre;
}

SolutionScore PoseScorer::Score(const Vertex &offset) {
    return Score(offset, m_noLog, false);
}

SolutionScore PoseScorer::Score(const Vertex &offset, solutions::FitLog &log) {
    return Score(offset, log.Stream(), log.IsWriting());
}

/// The translation is (centre - rotation·centre) + offset, in float and in this order.
SolutionScore PoseScorer::Score(const Vertex &offset, QTextStream &log, bool logging) {
    Vertex translation;
    translation = m_centring + offset;
    return DoScores(m_rotation, translation, m_fit.map, m_fit.target.points, m_fit.keepOut,
                    m_fit.target.restraints, m_moved, m_distances, log, logging);
}

} // namespace search
