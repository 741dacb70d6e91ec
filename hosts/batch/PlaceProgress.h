#pragma once

#include "cli/ProgressBar.h"
#include "placement/Monitor.h"

#include <QElapsedTimer>

namespace batch {

/// The search's monitor that drives a terminal: shows how far it is, and stops it at a signal.
class PlaceProgress : public placement::Monitor {
public:
    /// No bar where `quiet`.
    explicit PlaceProgress(bool quiet);

    void Advance(double share) override;
    bool IsCancelled() override;
    double Seconds() const { return double(m_timer.nsecsElapsed()) * 1e-9; }

private:
    cli::ProgressBar m_bar;
    QElapsedTimer m_timer;
};

} // namespace batch
