#pragma once

#include "search/PoseScorer.h"
#include "search/SearchPasses.h"
#include "solutions/FitLog.h"

namespace search {

/// The search as it is defined: pose after pose, each scored on its own.
class PlainSearch : public SearchPasses {
public:
    /// All must outlive it. The number to keep is read before each trim: the trims follow it where it changes
    /// on the way.
    PlainSearch(const fit::Preparation &fit, const fit::FitParameters &parameters,
                std::list<SolutionScore> &solutions, solutions::FitLog &log, PoseCounts &counts);

    void Identity() override;
    void Axis(std::size_t number) override;
    void Complete() override;
    void Abandon() override {}

private:
    /// Scores the current rotation at one offset.
    void Evaluate(const VARNO::Vertex &offset);

    const fit::Preparation &m_fit;
    const fit::FitParameters &m_parameters;
    std::list<SolutionScore> &m_solutions;
    solutions::FitLog &m_log;
    PoseCounts &m_counts;
    PoseScorer m_scorer;
};

} // namespace search
