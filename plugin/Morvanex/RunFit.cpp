#include "RunFit.h"

#include "Parameters.h"
#include "fast/FastSearch.h"
#include "fit/Cost.h"
#include "search/PlainSearch.h"
#include "search/Search.h"

#include "Config.h"
#include "Space.h"

#include <optional>

using namespace VARNO;

namespace {

fit::FitParameters ParametersFromGlobals() {
    fit::FitParameters parameters;
    parameters.axisDepth = Axis;
    parameters.angleStep = gammaStep;
    parameters.translationStep = Step;
    parameters.translationCount = TCount;
    parameters.keep = top_size;
    parameters.logging = logging;
    parameters.log = em_fname;
    if (restraints)
        parameters.restraints = fit::ReadRestraints(re_fname);
    parameters.inclusionDistance = Config::GetSetting("Morvanex", "Marginal").ToFloat(nullptr);
    parameters.target = m_Target;
    parameters.map = dynamic_cast<const Grid *>(m_Map);
    parameters.solid = m_Solid;
    return parameters;
}

/// Hands everything on to a monitor, and takes over afterwards what the host's code that ran inside it has
/// made of the globals that a search still reads.
class GlobalsFollower : public search::FitMonitor {
public:
    GlobalsFollower(search::FitMonitor &monitor, fit::FitParameters &parameters)
        : m_monitor(monitor)
        , m_parameters(parameters) {}

    void Started(const fit::Preparation &fit) override {
        m_monitor.Started(fit);
        Follow();
    }
    bool IsCancelled() override {
        const bool cancelled = m_monitor.IsCancelled();
        Follow();
        return cancelled;
    }
    void IdentityDone(std::size_t axes) override {
        m_monitor.IdentityDone(axes);
        Follow();
    }
    void AxisDone(std::size_t done, std::size_t axes, double minutes) override {
        m_monitor.AxisDone(done, axes, minutes);
        Follow();
    }
    void Cancelled() override { m_monitor.Cancelled(); }
    void Finished() override { m_monitor.Finished(); }
    void LogLost(const QString &reason) override {
        m_monitor.LogLost(reason);
        Follow();
    }

private:
    void Follow() {
        m_parameters.keep = top_size;
        m_parameters.logging = logging;
        m_parameters.log = em_fname;
    }

    search::FitMonitor &m_monitor;
    fit::FitParameters &m_parameters;
};

/// Whether there is a target, and it and the map are still in the model.
bool CanStart(const Compound *target, const Compound *map) {
    if (!target)
        return false;
    for (const auto &[node, what] : {std::pair(target, "target"), std::pair(map, "map")})
        if (node && !node->IsAttached()) {
            qWarning("The %s is no longer in the model; the fit does not start.", what);
            return false;
        }
    return true;
}

/// The survey of a fit; none where it would take too much.
std::optional<fit::Survey> Admit(const fit::FitParameters &parameters, const SearchOptions &options) {
    fit::Survey survey = fit::SurveyFit(parameters);
    const QString refusal = fit::RefuseFit(fit::EstimateCost(parameters, survey, options.bytesBeside),
                                           parameters.angleStep, options.anyNumberOfPoses);
    if (refusal.isEmpty())
        return survey;
    qWarning("%s", qPrintable(refusal));
    return {};
}

bool PrepareAndSearch(const fit::Survey &survey, const fit::FitParameters &parameters,
                      std::list<SolutionScore> &solutions, search::FitMonitor &monitor,
                      search::PoseCounts *counts, const SearchOptions &options) {
    search::PoseCounts own;
    return RunSearch(fit::PrepareFit(parameters, survey), parameters, solutions, monitor,
                     counts ? *counts : own, options);
}

} // namespace

bool RunFit(const fit::FitParameters &parameters, std::list<SolutionScore> &solutions,
            search::FitMonitor &monitor, search::PoseCounts *counts, const SearchOptions &options) {
    qDebug("Fit!");
    const RemovalHold hold;
    if (!CanStart(parameters.target, parameters.map))
        return false;
    const std::optional<fit::Survey> survey = Admit(parameters, options);
    return survey && PrepareAndSearch(*survey, parameters, solutions, monitor, counts, options);
}

bool RunFit(search::FitMonitor &monitor, search::PoseCounts *counts, const SearchOptions &options) {
    qDebug("Fit!");
    const RemovalHold hold;
    if (!CanStart(m_Target, m_Map))
        return false;
    fit::FitParameters parameters = ParametersFromGlobals();
    const std::optional<fit::Survey> survey = Admit(parameters, options);
    if (!survey)
        return false;
    TCount = parameters.translationCount = fit::OddCount(TCount);
    GlobalsFollower follower(monitor, parameters);
    return PrepareAndSearch(*survey, parameters, Solutions, follower, counts, options);
}

bool RunSearch(const fit::Preparation &fit, const fit::FitParameters &parameters,
               std::list<SolutionScore> &solutions, search::FitMonitor &monitor, search::PoseCounts &counts,
               const SearchOptions &options) {
    const auto choose = [&](solutions::FitLog &log) -> std::unique_ptr<search::SearchPasses> {
        if (!log.IsWriting() && !options.poseByPose && fast::FastSearch::Serves(fit, solutions))
            return std::make_unique<fast::FastSearch>(fit, parameters.keep, options.threads, solutions,
                                                      counts);
        return std::make_unique<search::PlainSearch>(fit, parameters, solutions, log, counts);
    };
    return search::Search(fit, parameters, monitor, choose);
}
