#include "search/PlainSearch.h"

#include "fit/Rotations.h"
#include "solutions/TopList.h"

using namespace VARNO;

namespace search {

PlainSearch::PlainSearch(const fit::Preparation &fit, const fit::FitParameters &parameters,
                         std::list<SolutionScore> &solutions, solutions::FitLog &log, PoseCounts &counts)
    : m_fit(fit)
    , m_parameters(parameters)
    , m_solutions(solutions)
    , m_log(log)
    , m_counts(counts)
    , m_scorer(fit) {}

void PlainSearch::Identity() {
    m_scorer.Rotate(fit::Rotations::Identity());
    for (const Vertex &offset : m_fit.offsets)
        Evaluate(offset);
}

void PlainSearch::Axis(std::size_t number) {
    for (const double angle : fit::Angles(m_fit.angleStep)) {
        m_scorer.Rotate(fit::RotationAbout(m_fit.axes[number], angle));
        for (const Vertex &offset : m_fit.offsets) {
            Evaluate(offset);
            if (solutions::NeedsWeeding(m_solutions, m_parameters.keep))
                weed(m_solutions, m_parameters.keep);
        }
    }
}

void PlainSearch::Complete() {
    weed(m_solutions, m_parameters.keep);
}

void PlainSearch::Evaluate(const Vertex &offset) {
    SolutionScore solution = m_scorer.Score(offset, m_log);
    ++m_counts.tried;
    ++m_counts.scoredExactly;
    if (!solution.IsAccepted())
        return;
    ++m_counts.accepted;
    m_solutions.push_back(std::move(solution));
}

} // namespace search
