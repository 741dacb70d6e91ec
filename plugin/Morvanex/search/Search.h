#pragma once

#include "search/FitMonitor.h"
#include "search/SearchPasses.h"
#include "solutions/FitLog.h"

#include <functional>
#include <memory>

namespace search {

/// Makes what scores the poses, once the monitor has been told of the start and the log is open.
using MakePasses = std::function<std::unique_ptr<SearchPasses>(solutions::FitLog &log)>;

/// One search over all poses of a prepared fit: scores the target in its own orientation and at every angle
/// about every axis, each at every translation. The log of the parameters is opened once the monitor has
/// been told of the start.
///
/// True when the search ran to its end, false when it was cancelled.
bool Search(const fit::Preparation &fit, const fit::FitParameters &parameters, FitMonitor &monitor,
            const MakePasses &makePasses);

} // namespace search
