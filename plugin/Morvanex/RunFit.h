#pragma once

#include "fit/FitParameters.h"
#include "search/FitMonitor.h"
#include "search/SearchPasses.h"
#include "solutions/Solution.h"

struct SearchOptions {
    bool anyNumberOfPoses = false; ///< do not refuse a fit for its number of poses
    bool poseByPose = false;       ///< score each pose on its own: slow, and the definition of the results
    unsigned threads = 1;          ///< that score poses, where they are not scored one by one; not 0
    double bytesBeside = 0;        ///< that the caller takes for each solution in the end, as a dialog's row
};

/// Runs a whole fit: prepares it, scores the target in its own orientation and at every angle about every
/// axis, each at every translation, appends accepted poses to `solutions` and keeps it trimmed, writes the
/// log.
///
/// True when the search ran to its end. False without a target, when the target or the map is no longer in
/// the model or the fit would take too much (with a warning; nothing is changed then), or when
/// it was cancelled: `solutions` then holds what was found, untrimmed.
///
/// Nodes cannot leave the model while it runs, and the monitor must leave `solutions` alone. `counts`, if
/// given, is kept up to date from pass to pass. `solutions` is up to date when the monitor's `Cancelled`
/// or `Finished` is called, not necessarily before.
bool RunFit(const fit::FitParameters &parameters, std::list<SolutionScore> &solutions,
            search::FitMonitor &monitor, search::PoseCounts *counts = nullptr,
            const SearchOptions &options = {});

/// The same with the plug-in's globals and the setting "Marginal" as parameters and list, read when the fit
/// starts; `TCount` becomes odd unless the fit is refused. The number to keep and the log are
/// read again whenever the monitor has been called, since the host's code that runs inside it may write them.
bool RunFit(search::FitMonitor &monitor, search::PoseCounts *counts = nullptr,
            const SearchOptions &options = {});

/// The search alone, on what has been prepared: everything above that comes after the preparation. Of the
/// parameters it reads the number to keep and the log.
bool RunSearch(const fit::Preparation &fit, const fit::FitParameters &parameters,
               std::list<SolutionScore> &solutions, search::FitMonitor &monitor, search::PoseCounts &counts,
               const SearchOptions &options = {});
