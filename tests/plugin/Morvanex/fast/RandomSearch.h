#pragma once

#include "fit/Preparation.h"
#include "solutions/Solution.h"

#include <memory>
#include <optional>

/// A small search made up from a seed: every kind of map, target, solid, offsets and list that a fit can
/// meet, odd ones more often than in life. The same seed gives the same search.
struct RandomSearch {
    explicit RandomSearch(unsigned seed);

    std::unique_ptr<VARNO::Grid> map, keepOut; ///< the keep-out grid may be null
    fit::Preparation fit;
    std::list<SolutionScore> earlier; ///< what stands in the list before the search
    int keep = 0;
    /// Cancel is answered yes at the n-th question, counted from 0; never if there is none.
    std::optional<std::size_t> cancelAt;
};
