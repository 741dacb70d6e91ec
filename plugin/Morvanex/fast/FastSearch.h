#pragma once

#include "fast/AxisThreads.h"
#include "fast/BestPoses.h"
#include "fit/Rotations.h"
#include "search/PoseScorer.h"
#include "search/SearchPasses.h"
#include "solutions/Solution.h"

namespace fast {

/// The passes of a search without a log, much faster than pose by pose and with the same results to the last
/// bit. The pose-by-pose search is the definition; docs/search.md tells how this one works.
class FastSearch : public search::SearchPasses {
public:
    /// Whether this search can take the place of the pose-by-pose one, and is worth its preparation.
    static bool Serves(const fit::Preparation &fit, const std::list<SolutionScore> &solutions);

    /// How many of `threads` may score poses, 1 or more: what they take beside the host's own map stays
    /// within twice that map and 64 MiB.
    static unsigned ThreadsWithin(const fit::Preparation &fit, int keep, unsigned threads);

    /// Keeps the `keep` best. `counts` is kept up to date from pass to pass; `solutions` is brought up to
    /// date by `Complete` and `Abandon` alone. All references must outlive it. More than one thread score the
    /// axes beside the caller's.
    FastSearch(const fit::Preparation &fit, int keep, unsigned threads, std::list<SolutionScore> &solutions,
               search::PoseCounts &counts);

    void Identity() override;
    void Axis(std::size_t number) override;
    void Complete() override;
    void Abandon() override;

private:
    void Count(std::uint64_t tried, const PoseTally &tally);
    std::uint64_t AppendedSinceLastTrim();
    bool IsFirstRotatedPoseAccepted();
    std::vector<EntryNumber> LastAccepted(std::uint64_t count);
    void KeepLastAccepted(std::uint64_t rotation, std::uint64_t count, std::vector<EntryNumber> &accepted);
    void List(const std::vector<EntryNumber> &numbers);

    const fit::Preparation &m_fit;
    std::size_t m_keep;
    std::list<SolutionScore> &m_solutions;
    search::PoseCounts &m_counts;
    LevelGrids m_grids;
    CubeScorer m_scorer;
    BestPoses m_best;
    search::PoseScorer m_poseScorer;
    fit::Rotations m_rotations;
    std::uint64_t m_earlier; ///< solutions that stood in the list before
    EntryNumber m_next;      ///< the number of the next pose
    std::size_t m_axesDone = 0;
    std::uint64_t m_appended;               ///< to the list so far, the earlier ones included
    std::uint64_t m_appendedByIdentity = 0; ///< by the end of the identity pass
    std::optional<AxisThreads> m_threads;
};

} // namespace fast
