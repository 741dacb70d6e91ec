#pragma once

#include "fit/Preparation.h"

#include <cstdint>
#include <memory>

namespace search {

struct PoseCounts;

/// How the poses of a search are scored and `Solutions` is kept. The calls come in this order: the identity,
/// the axes from the first to the last, `Complete`; or `Abandon` after any of them.
class SearchPasses {
public:
    virtual ~SearchPasses() = default;

    /// Scores the target's own orientation at every offset.
    virtual void Identity() = 0;
    /// Scores every angle about one axis, each at every offset.
    virtual void Axis(std::size_t number) = 0;
    /// Leaves in `Solutions` the highest-scoring ones, as `weed` does.
    virtual void Complete() = 0;
    /// Leaves in `Solutions` what it holds between two poses: the solutions that outlived the last trim, and
    /// behind them what was found since.
    virtual void Abandon() = 0;
};

} // namespace search
