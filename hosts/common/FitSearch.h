#pragma once

#include "hosts/common/FitRecord.h"

#include "fit/FitParameters.h"
#include "fit/Preparation.h"
#include "search/FitMonitor.h"

#include <QElapsedTimer>

namespace hosts {

/// The search's monitor that keeps a fit's record up to date. Who derives from it says when to stop.
class FitRecorder : public search::FitMonitor {
public:
    explicit FitRecorder(FitRecord &record)
        : m_record(record) {}

    FitRecord &Record() { return m_record; }
    /// Why the log can no longer be written; empty while it can.
    const QString &LogError() const { return m_logError; }

    void Started(const fit::Preparation &fit) override;
    void IdentityDone(std::size_t axes) override;
    void AxisDone(std::size_t done, std::size_t axes, double minutes) override;
    void Cancelled() override;
    void Finished() override;
    void LogLost(const QString &reason) override { m_logError = reason; }

private:
    void TakeTime();

    FitRecord &m_record;
    QElapsedTimer m_timer;
    bool m_identityDone = false;
    QString m_logError;
};

/// Runs the search of a fit that CheckFit has surveyed; the recorder's record then holds what came of it.
/// True where it ran to its end, else `solutions` are those found by then. Throws FileError where the log
/// could no longer be written.
bool SearchFit(const fit::FitParameters &parameters, const fit::Survey &survey,
               std::list<SolutionScore> &solutions, FitRecorder &recorder);

} // namespace hosts
