#pragma once

#include "hosts/common/FitOptions.h"

#include "search/PoseSample.h"
#include "search/SearchPasses.h"
#include "solutions/Solution.h"

#include <list>

namespace hosts {

/// A solution with its place among those kept.
struct RankedSolution {
    const SolutionScore *solution;
    std::size_t rank;       ///< by score, from 1; of equal scores the one found later comes first
    std::size_t rankInFile; ///< counted from the end of the results file, from 1
};

/// The solutions by rank. A list shorter than the number to keep is unsorted, so that the two ranks differ.
std::vector<RankedSolution> RankByScore(const std::list<SolutionScore> &solutions);

/// A fit and its outcome, as the JSON file has them.
struct FitRecord {
    FitOptions options;
    std::string chain; ///< identifier of the chain that was fitted
    std::size_t axes = 0, angles = 0, translations = 0;
    std::size_t axesDone = 0; ///< fewer than `axes` where the fit was stopped
    VARNO::Vertex centre;     ///< of the target's start position, Å
    search::PoseCounts poses;
    double seconds = 0;
    search::PoseSample sample;
    std::vector<RankedSolution> solutions;
};

/// What is remarkable in what came of a fit, for the user: a warning each. `outOfReach` is what there is to
/// be warned of before it, see FitChecks.h; it may be empty.
std::vector<std::string> WarningsOf(const FitRecord &record, const std::string &outOfReach);

} // namespace hosts
