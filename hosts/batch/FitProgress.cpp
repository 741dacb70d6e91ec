#include "FitProgress.h"

#include "cli/StopSignals.h"

#include "fit/Angles.h"

#include <algorithm>

using namespace hosts;

namespace batch {

FitProgress::FitProgress(FitRecord &record, bool quiet)
    : m_record(record)
    , m_bar(std::make_unique<cli::ProgressBar>(!quiet)) {}

void FitProgress::Started(const fit::Preparation &fit) {
    m_record.axes = fit.axes.size();
    m_record.angles = fit::Angles(fit.angleStep).Count();
    m_record.translations = fit.offsets.size();
    m_record.centre = fit.target.centre;
    m_record.sample = search::SamplePoses(fit);
    m_timer.start();
    m_stepTimer.start();
}

bool FitProgress::IsCancelled() {
    return cli::StopSignal() != 0 || !m_logError.isEmpty();
}

void FitProgress::IdentityDone(std::size_t axes) {
    m_identityDone = true;
    // The pass before had one angle; what it prepared besides only makes the estimate longer.
    m_longestAxis = SecondsOfStep() * double(m_record.angles);
    cli::ExpectEndOfStep(m_longestAxis);
    m_bar->Show(0, axes, -1);
}

void FitProgress::AxisDone(std::size_t done, std::size_t axes, double minutes) {
    m_record.axesDone = done;
    // With several threads axes end in bursts: the time since the last one tells little.
    const double seconds = SecondsOfStep();
    m_longestAxis = done == 1 ? seconds : std::max(m_longestAxis, seconds);
    cli::ExpectEndOfStep(m_longestAxis);
    m_bar->Show(done, axes, 60 * minutes);
}

void FitProgress::Cancelled() {
    // A search stops at the end of the identity pass or of an axis.
    m_record.axesDone += m_identityDone;
    End();
}

double FitProgress::SecondsOfStep() {
    const double seconds = double(m_stepTimer.nsecsElapsed()) * 1e-9;
    m_stepTimer.start();
    return seconds;
}

void FitProgress::End() {
    m_record.seconds = double(m_timer.nsecsElapsed()) * 1e-9;
    m_bar.reset();
}

} // namespace batch
