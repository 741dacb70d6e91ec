#pragma once

#include <cstddef>
#include <cstdint>

namespace search {

/// How many poses a search tried, and how many of them were accepted.
struct PoseCounts {
    std::uint64_t tried = 0;
    std::uint64_t accepted = 0;      ///< not collided, and of a score other than -1.0
    std::uint64_t scoredExactly = 0; ///< of the tried: those that no bound of their score ruled out
};

/// How the poses of a search are scored and the list of solutions is kept. The calls come in this order: the
/// identity, the axes from the first to the last, `Complete`; or `Abandon` after any of them.
class SearchPasses {
public:
    virtual ~SearchPasses() = default;

    /// Scores the target's own orientation at every offset.
    virtual void Identity() = 0;
    /// Scores every angle about one axis, each at every offset.
    virtual void Axis(std::size_t number) = 0;
    /// Leaves in the list the highest-scoring solutions, as `weed` does.
    virtual void Complete() = 0;
    /// Leaves in the list what it holds between two poses: the solutions that outlived the last trim, and
    /// behind them what was found since.
    virtual void Abandon() = 0;
};

} // namespace search
