#pragma once

#include "cli/ProgressBar.h"
#include "hosts/common/FitSearch.h"

#include <memory>

namespace batch {

/// The search's monitor that drives a terminal: shows its progress, stops it at a signal or when the log can
/// no longer be written, and records what the report needs.
class FitProgress : public hosts::FitRecorder {
public:
    /// Keeps `record` up to date. No bar where `quiet`.
    FitProgress(hosts::FitRecord &record, bool quiet);

    void Started(const fit::Preparation &fit) override;
    bool IsCancelled() override;
    void IdentityDone(std::size_t axes) override;
    void AxisDone(std::size_t done, std::size_t axes, double minutes) override;
    void Cancelled() override;
    void Finished() override;

private:
    /// Since the last call, or the start of the search.
    double SecondsOfStep();

    std::unique_ptr<cli::ProgressBar> m_bar;
    QElapsedTimer m_stepTimer;
    double m_longestAxis = 0; ///< seconds
};

} // namespace batch
