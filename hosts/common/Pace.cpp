#include "hosts/common/Pace.h"

#include "Parameters.h"
#include "fit/Axes.h"

#include <QElapsedTimer>

#include <algorithm>

using namespace VARNO;

namespace hosts {

namespace {

/// Lets a search run for some time after its identity pass, which also has the search's own preparation in
/// it.
class Stopwatch : public search::FitMonitor {
public:
    explicit Stopwatch(const search::PoseCounts &counts)
        : m_counts(counts) {}

    double Pace() const { return double(m_counts.tried - m_before) / (double(m_nanoseconds) * 1e-9); }

    void Started(const fit::Preparation &) override {}
    void IdentityDone(std::size_t) override {
        m_before = m_counts.tried;
        m_timer.start();
    }
    bool IsCancelled() override {
        constexpr qint64 enough = 50'000'000;
        return m_timer.isValid() && (m_nanoseconds = m_timer.nsecsElapsed()) > enough;
    }
    void AxisDone(std::size_t, std::size_t, double) override {}
    void Cancelled() override {}
    void Finished() override {}

private:
    const search::PoseCounts &m_counts;
    QElapsedTimer m_timer;
    std::uint64_t m_before = 0;
    qint64 m_nanoseconds = 1;
};

} // namespace

double MeasurePace(const fit::FitParameters &parameters, const fit::Target &target,
                   const SearchOptions &options) {
    // Few enough that a single axis does not take long.
    constexpr int maxTranslations = 11;
    fit::Preparation trial;
    trial.map = parameters.map;
    trial.target = target;
    trial.axes = fit::RotationAxes(4);
    const int translations = fit::OddCount(std::min(parameters.translationCount, maxTranslations));
    trial.offsets = fit::TranslationOffsets(translations, parameters.translationStep);
    trial.angleStep = Radians(45);
    fit::FitParameters withoutLog;
    withoutLog.keep = parameters.keep;
    std::list<SolutionScore> solutions;
    search::PoseCounts counts;
    Stopwatch stopwatch(counts);
    RunSearch(trial, withoutLog, solutions, stopwatch, counts, options);
    return stopwatch.Pace();
}

} // namespace hosts
