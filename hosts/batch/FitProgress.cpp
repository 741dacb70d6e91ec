#include "FitProgress.h"

#include "cli/StopSignals.h"

#include <algorithm>

using namespace hosts;

namespace batch {

FitProgress::FitProgress(FitRecord &record, bool quiet)
    : FitRecorder(record)
    , m_bar(std::make_unique<cli::ProgressBar>(!quiet)) {}

void FitProgress::Started(const fit::Preparation &fit) {
    FitRecorder::Started(fit);
    m_stepTimer.start();
}

bool FitProgress::IsCancelled() {
    return cli::StopSignal() != 0 || !LogError().isEmpty();
}

void FitProgress::IdentityDone(std::size_t axes) {
    FitRecorder::IdentityDone(axes);
    // The pass before had one angle; what it prepared besides only makes the estimate longer.
    m_longestAxis = SecondsOfStep() * double(Record().angles);
    cli::ExpectEndOfStep(m_longestAxis);
    m_bar->Show(0, axes, -1);
}

void FitProgress::AxisDone(std::size_t done, std::size_t axes, double minutes) {
    FitRecorder::AxisDone(done, axes, minutes);
    // With several threads axes end in bursts: the time since the last one tells little.
    const double seconds = SecondsOfStep();
    m_longestAxis = done == 1 ? seconds : std::max(m_longestAxis, seconds);
    cli::ExpectEndOfStep(m_longestAxis);
    m_bar->Show(done, axes, 60 * minutes);
}

void FitProgress::Cancelled() {
    FitRecorder::Cancelled();
    m_bar.reset();
}

void FitProgress::Finished() {
    FitRecorder::Finished();
    m_bar.reset();
}

double FitProgress::SecondsOfStep() {
    const double seconds = double(m_stepTimer.nsecsElapsed()) * 1e-9;
    m_stepTimer.start();
    return seconds;
}

} // namespace batch
