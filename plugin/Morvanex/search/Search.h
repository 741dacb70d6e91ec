#pragma once

#include "search/FitMonitor.h"

namespace search {

/// How many poses a search tried, and how many of them were accepted.
struct PoseCounts {
    std::uint64_t tried = 0;
    std::uint64_t accepted = 0;      ///< not collided, and of a score other than -1.0
    std::uint64_t scoredExactly = 0; ///< of the tried: those that no bound of their score ruled out
};

struct SearchOptions {
    bool anyNumberOfPoses = false; ///< do not refuse a fit for its number of poses
    bool poseByPose = false;       ///< score each pose on its own: slow, and the definition of the results
    unsigned threads = 1;          ///< that score poses, where they are not scored one by one; not 0
};

/// Runs a whole fit with the current parameters: prepares it, scores the target in its own orientation and at
/// every angle about every axis, each at every translation, appends accepted poses to `Solutions` and keeps
/// it trimmed to `top_size`, writes the log.
///
/// True when the search ran to its end. False without a target, when the target or the map is no longer in
/// the model or the fit would take too much (said on the warning channel; nothing is changed then), or when
/// it was cancelled: `Solutions` then holds what was found, untrimmed.
///
/// Nodes cannot leave the model while it runs, and the monitor must leave `Solutions` alone. `counts`, if
/// given, is kept up to date from pass to pass. `Solutions` is up to date when the monitor hears `Cancelled`
/// or `Finished`, not necessarily before.
bool RunFit(FitMonitor &monitor, PoseCounts *counts = nullptr, const SearchOptions &options = {});

/// The search alone, on what has been prepared: everything above that comes after the preparation.
bool RunSearch(const fit::Preparation &fit, FitMonitor &monitor, PoseCounts &counts,
               const SearchOptions &options = {});

} // namespace search
