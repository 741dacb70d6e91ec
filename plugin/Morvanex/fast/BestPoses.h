#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace fast {

/// An entry's place in the order of appending: what stood in the list before a search comes first, then the
/// search's poses in the order in which it tries them, rejected ones counted too.
using EntryNumber = std::uint64_t;

struct ScoredEntry {
    double score;
    EntryNumber number;
};

/// Orders as the trimmed list does: by score, of equal scores the earlier appended first.
inline bool operator<(const ScoredEntry &a, const ScoredEntry &b) {
    return a.score != b.score ? a.score < b.score : a.number < b.number;
}

/// What the search knows of the list of solutions while it runs: scores and numbers of all entries that the
/// list may still hold after a trim. No record is made, and nothing is sorted.
///
/// A trim keeps the `keep` greatest entries, whatever was trimmed before. So an entry that `keep` earlier
/// entries exceed is gone after the next trim, and need not be added, nor even scored. An entry that is
/// exceeded by later ones may be forgotten only once it is certain that a trim came after those: a search
/// that is cancelled leaves the list as the last trim left it, with the untrimmed entries since then behind.
class BestPoses {
public:
    /// Entries below `threshold` are known not to outlive the next trim.
    explicit BestPoses(std::size_t keep, double threshold = -std::numeric_limits<double>::infinity());

    /// Later entries with a score below this do not outlive the next trim.
    double Threshold() const { return m_threshold; }

    /// Takes an entry of the part that the next `Advance` ends. Entries below the threshold may be left out.
    void Add(double score, EntryNumber number) {
        m_entries.push_back({score, number});
        ++m_fresh;
    }

    /// All entries below `next` have been dealt with; since the last call `appended` were appended to the
    /// list.
    void Advance(EntryNumber next, std::uint64_t appended);

    /// The `keep` greatest entries of those below `end`, or all where there are fewer, in ascending order.
    /// `end` must not lie before a trim that the list still shows.
    std::vector<ScoredEntry> Greatest(EntryNumber end = std::numeric_limits<EntryNumber>::max()) const;

    const std::vector<ScoredEntry> &Entries() const { return m_entries; }

private:
    void RaiseThreshold();
    void Forget(EntryNumber next);

    std::size_t m_keep;
    std::vector<ScoredEntry> m_entries;
    double m_threshold = -std::numeric_limits<double>::infinity();
    std::size_t m_fresh = 0; ///< entries added since the threshold was last searched for
    EntryNumber m_mark = 0;  ///< entries below it may be forgotten once a trim came after it
    std::uint64_t m_appendedSinceMark = 0;
};

} // namespace fast
