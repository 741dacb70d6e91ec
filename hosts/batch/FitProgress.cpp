#include "FitProgress.h"

#include "cli/Interrupt.h"

#include "fit/Angles.h"

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
}

bool FitProgress::IsCancelled() {
    return cli::WasInterrupted() || !m_logError.isEmpty();
}

void FitProgress::IdentityDone(std::size_t axes) {
    m_identityDone = true;
    m_bar->Show(0, axes, -1);
}

void FitProgress::AxisDone(std::size_t done, std::size_t axes, double minutes) {
    m_record.axesDone = done;
    m_bar->Show(done, axes, 60 * minutes);
}

void FitProgress::Cancelled() {
    // A search stops at the end of the identity pass or of an axis.
    m_record.axesDone += m_identityDone;
    End();
}

void FitProgress::End() {
    m_record.seconds = double(m_timer.nsecsElapsed()) * 1e-9;
    m_bar.reset();
}

} // namespace batch
