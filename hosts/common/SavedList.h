#pragma once

#include "base/Memory.h"

#include "solutions/Solution.h"

#include <map>

namespace hosts {

/// A list of solutions read back from a file, the best first: rank r stands at r - 1.
struct SavedList {
    std::string file;
    std::vector<SolutionScore> solutions;
    /// Read from a results file, whose poses have two decimals; a JSON file has them in full precision.
    bool isRounded = false;
    std::vector<qint64> skippedLines;            ///< of a results file: lines without eight words
    std::map<std::size_t, std::string> problems; ///< rank of a solution that cannot be used, and why

    /// Throws FileError for a rank outside the list, and for a pose whose numbers could not be read or are
    /// not finite.
    const SolutionScore &OfRank(long rank) const;
};

/// Reads what `fit` saved as JSON, or a results file; recognised by the content. The ranks of a results file
/// count from its end. Throws FileError: unreadable, empty, binary, of another kind, without a solution, or
/// so large that reading it would take more than `memory` bytes.
SavedList ReadSavedList(const std::string &file, double memory = base::MemoryLimit());

/// The most, in Å, by which the two decimals of a results file may have moved a point at that distance from
/// the frame's origin.
double RoundingCost(double distance);

} // namespace hosts
