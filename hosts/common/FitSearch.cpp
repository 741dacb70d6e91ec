#include "hosts/common/FitSearch.h"

#include "RunFit.h"
#include "fit/Angles.h"
#include "formats/files/FileError.h"
#include "solutions/TopList.h"

namespace hosts {

void FitRecorder::Started(const fit::Preparation &fit) {
    m_record.axes = fit.axes.size();
    m_record.angles = fit::Angles(fit.angleStep).Count();
    m_record.translations = fit.offsets.size();
    m_record.centre = fit.target.centre;
    m_record.sample = search::SamplePoses(fit);
    m_timer.start();
}

void FitRecorder::IdentityDone(std::size_t) {
    m_identityDone = true;
}

void FitRecorder::AxisDone(std::size_t done, std::size_t, double) {
    m_record.axesDone = done;
}

void FitRecorder::Cancelled() {
    // A search stops at the end of the identity pass or of an axis.
    m_record.axesDone += m_identityDone;
    TakeTime();
}

void FitRecorder::Finished() {
    TakeTime();
}

void FitRecorder::TakeTime() {
    m_record.seconds = double(m_timer.nsecsElapsed()) * 1e-9;
}

bool SearchFit(const fit::FitParameters &parameters, const fit::Survey &survey,
               std::list<SolutionScore> &solutions, FitRecorder &recorder) {
    FitRecord &record = recorder.Record();
    const bool finished =
        RunSearch(fit::PrepareFit(parameters, survey), parameters, solutions, recorder, record.poses,
                  {.anyNumberOfPoses = record.options.force, .threads = unsigned(record.options.threads)});
    if (!recorder.LogError().isEmpty())
        throw formats::FileError(*record.options.log, "",
                                 "cannot be written: " + recorder.LogError().toStdString() +
                                     "; the fit was stopped");
    if (!finished)
        weed(solutions, parameters.keep);
    record.solutions = RankByScore(solutions);
    return finished;
}

} // namespace hosts
