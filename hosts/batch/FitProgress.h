#pragma once

#include "cli/ProgressBar.h"
#include "hosts/common/FitRecord.h"
#include "search/FitMonitor.h"

#include <QElapsedTimer>

#include <memory>

namespace batch {

/// The search's monitor that drives a terminal: shows its progress, stops it at a signal or when the log can
/// no longer be written, and records what the report needs.
class FitProgress : public search::FitMonitor {
public:
    /// Keeps `record` up to date. No bar where `quiet`.
    FitProgress(hosts::FitRecord &record, bool quiet);

    /// Why the log can no longer be written; empty while it can.
    const QString &LogError() const { return m_logError; }

    void Started(const fit::Preparation &fit) override;
    bool IsCancelled() override;
    void IdentityDone(std::size_t axes) override;
    void AxisDone(std::size_t done, std::size_t axes, double minutes) override;
    void Cancelled() override;
    void Finished() override { End(); }
    void LogLost(const QString &reason) override { m_logError = reason; }

private:
    void End();
    /// Since the last call, or the start of the search.
    double SecondsOfStep();

    hosts::FitRecord &m_record;
    std::unique_ptr<cli::ProgressBar> m_bar;
    QElapsedTimer m_timer, m_stepTimer;
    double m_longestAxis = 0; ///< seconds
    bool m_identityDone = false;
    QString m_logError;
};

} // namespace batch
