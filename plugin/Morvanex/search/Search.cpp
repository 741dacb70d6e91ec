#include "search/Search.h"

#include "Parameters.h"
#include "fast/FastSearch.h"
#include "fit/Cost.h"
#include "fit/Rotations.h"
#include "search/PoseScorer.h"
#include "solutions/FitLog.h"
#include "solutions/TopList.h"

#include "Space.h"

#include <QElapsedTimer>

using namespace VARNO;

namespace search {

namespace {

bool HasLeftModel(const Compound *node) {
    return node && !node->IsAttached();
}

/// The search as it is defined: pose after pose, each scored on its own.
class PoseByPose : public SearchPasses {
public:
    PoseByPose(const fit::Preparation &fit, solutions::FitLog &log, PoseCounts &counts)
        : m_fit(fit)
        , m_log(log)
        , m_counts(counts)
        , m_scorer(fit) {}

    void Identity() override {
        m_scorer.Rotate(fit::Rotations::Identity());
        for (const Vertex &offset : m_fit.offsets)
            Evaluate(offset);
    }

    void Axis(std::size_t number) override {
        for (const double angle : fit::Angles(m_fit.angleStep)) {
            m_scorer.Rotate(fit::RotationAbout(m_fit.axes[number], angle));
            for (const Vertex &offset : m_fit.offsets) {
                Evaluate(offset);
                if (solutions::NeedsWeeding(Solutions, top_size))
                    weed(Solutions, top_size);
            }
        }
    }

    void Complete() override { weed(Solutions, top_size); }
    void Abandon() override {}

private:
    /// Scores the current rotation at one offset.
    void Evaluate(const Vertex &offset) {
        SolutionScore solution = m_scorer.Score(offset, m_log);
        ++m_counts.tried;
        ++m_counts.scoredExactly;
        if (!solution.IsAccepted())
            return;
        ++m_counts.accepted;
        Solutions.push_back(std::move(solution));
    }

    const fit::Preparation &m_fit;
    solutions::FitLog &m_log;
    PoseCounts &m_counts;
    PoseScorer m_scorer;
};

/// One search over all poses of a prepared fit.
class Search {
public:
    Search(const fit::Preparation &fit, FitMonitor &monitor, PoseCounts &counts, const SearchOptions &options)
        : m_fit(fit)
        , m_monitor(monitor) {
        m_timer.start();
        m_startReading = m_timer.elapsed();
        m_monitor.Started(m_fit);
        m_log.Open(em_fname, logging);
        if (!m_log.IsWriting() && !options.poseByPose && fast::FastSearch::Serves(fit))
            m_passes = std::make_unique<fast::FastSearch>(fit, top_size, options.threads, counts);
        else
            m_passes = std::make_unique<PoseByPose>(fit, m_log, counts);
    }

    bool Run() {
        m_passes->Identity();
        if (IsCancelled())
            return false;
        m_monitor.IdentityDone(m_fit.axes.size());
        for (std::size_t done = 1; done <= m_fit.axes.size(); ++done) {
            m_passes->Axis(done - 1);
            const double minutes = RemainingMinutes(done);
            if (IsCancelled())
                return false;
            m_monitor.AxisDone(done, m_fit.axes.size(), minutes);
        }
        m_passes->Complete();
        m_monitor.Finished();
        return true;
    }

private:
    bool IsCancelled() {
        if (!m_log.Flush())
            m_monitor.LogLost(m_log.ErrorText());
        if (!m_monitor.IsCancelled())
            return false;
        m_passes->Abandon();
        m_monitor.Cancelled();
        return true;
    }

    /// The time that the remaining axes take at the pace so far. The first reading of the clock, a few
    /// milliseconds at most, is added to the later one.
    double RemainingMinutes(std::size_t done) const {
        const double spent = double(m_timer.elapsed() + m_startReading) / 60000.0;
        return spent / double(done) * double(m_fit.axes.size() - done);
    }

    const fit::Preparation &m_fit;
    FitMonitor &m_monitor;
    solutions::FitLog m_log;
    std::unique_ptr<SearchPasses> m_passes;
    QElapsedTimer m_timer;
    qint64 m_startReading = 0;
};

} // namespace

bool RunFit(FitMonitor &monitor, PoseCounts *counts, const SearchOptions &options) {
    qDebug("Fit!");
    const RemovalHold hold;
    const auto *map = dynamic_cast<const Grid *>(m_Map);
    if (!m_Target)
        return false;
    for (const auto &[node, what] : {std::pair(m_Target, "target"), std::pair(m_Map, "map")})
        if (HasLeftModel(node)) {
            qWarning("The %s is no longer in the model; the fit does not start.", what);
            return false;
        }
    const fit::Survey survey = fit::SurveyFit();
    const QString refusal = fit::RefuseFit(fit::EstimateCost(survey), gammaStep, options.anyNumberOfPoses);
    if (!refusal.isEmpty()) {
        qWarning("%s", qPrintable(refusal));
        return false;
    }
    const fit::Preparation fit = fit::PrepareFit(survey, map);
    PoseCounts own;
    return RunSearch(fit, monitor, counts ? *counts : own, options);
}

bool RunSearch(const fit::Preparation &fit, FitMonitor &monitor, PoseCounts &counts,
               const SearchOptions &options) {
    return Search(fit, monitor, counts, options).Run();
}

} // namespace search
