#pragma once

#include "fit/Preparation.h"

#include <QString>

namespace search {

/// What a search reports, and the one thing it asks: whether to stop. The calls come on the search's
/// own thread, in this order: Started, then after the identity pass IsCancelled and IdentityDone, then after
/// each axis IsCancelled and AxisDone, at last Finished; or Cancelled, right after IsCancelled answered true.
class FitMonitor {
public:
    virtual ~FitMonitor() = default;

    /// Everything is prepared and no pose is scored yet. The preparation lives until the search returns.
    virtual void Started(const fit::Preparation &fit) = 0;
    virtual bool IsCancelled() = 0;
    /// The target was scored in its own orientation at every translation.
    virtual void IdentityDone(std::size_t axes) = 0;
    /// `done` of `axes` axes are done; about `minutes` remain.
    virtual void AxisDone(std::size_t done, std::size_t axes, double minutes) = 0;
    virtual void Cancelled() = 0;
    virtual void Finished() = 0;

    /// The log can no longer be written; called once, before the next IsCancelled. The search goes on without
    /// it.
    virtual void LogLost(const QString &reason) { Q_UNUSED(reason); }
};

} // namespace search
