#include "FitChecks.h"

#include "Chains.h"
#include "Diagnostics.h"
#include "RestraintsCheck.h"
#include "Wording.h"

#include "Axes.h"
#include "Cost.h"
#include "FileError.h"
#include "Numbers.h"
#include "Parameters.h"
#include "PoseSample.h"

#include <QElapsedTimer>

#include <algorithm>

namespace Batch {

namespace {

using VARNO::FileError;

constexpr double longestFit = 365.25 * 24 * 3600; ///< seconds

void CheckTarget(const FitOptions &options, const FitInput &input, const Target &target) {
    const std::string chain = "chain " + ChainNames({input.target});
    if (target.points.empty())
        throw FileError(options.target, chain, "no residue has a position (an atom CA, C4' or P)");
    if (target.invalidResidues > 0)
        Warn(options.target + ": " + chain + ": " + Counted(target.invalidResidues, "residue") +
             " without a position (an atom CA, C4' or P) left out");
}

std::string FirstOf(const std::vector<std::string> &names) {
    constexpr std::size_t shown = 10;
    std::string text;
    for (std::size_t i = 0; i < std::min(shown, names.size()); ++i)
        text += (i > 0 ? ", " : "") + names[i];
    return names.size() > shown ? text + " and " + std::to_string(names.size() - shown) + " more" : text;
}

void CheckRestraints(const FitOptions &options, const Survey &survey) {
    if (!options.restraints)
        return;
    const std::vector<std::string> unknown = UnknownResidues(survey.records, m_Target);
    const std::string problem = "the target has no residue of that name with a position: " + FirstOf(unknown);
    if (survey.target.restraints.empty())
        throw FileError(*options.restraints, "", "no record names a residue of the target: " + problem);
    if (!unknown.empty())
        Warn(*options.restraints + ": " + problem);
}

void CheckSolid(const FitOptions &options, const Survey &survey) {
    if (survey.solid.invalidResidues > 0)
        Warn("solid: " + Counted(survey.solid.invalidResidues, "residue") +
             " without a position (an atom CA, C4' or P) left out");
    if (!options.solids.empty() && survey.solid.points.empty())
        Warn("the solid has no effect: none of its residues lies within " + options.inclusionDistance +
             " Å of the target's centre");
}

/// Poses scored in a second, measured on a small search of the same target in the same map.
double MeasurePace(const Target &target) {
    constexpr std::uint64_t poses = 2000;
    Preparation trial;
    trial.map = dynamic_cast<const Grid *>(m_Map);
    trial.target = target;
    trial.axes = RotationAxes(1);
    trial.offsets = TranslationOffsets(5, Step);
    trial.angleStep = Radians(10);
    QElapsedTimer timer;
    timer.start();
    SamplePoses(trial, poses);
    return double(poses) / (double(std::max<qint64>(timer.nsecsElapsed(), 1)) * 1e-9);
}

/// Why the fit is not to be run, with what it would take; empty when it may.
std::string Refusal(const Survey &survey, bool force) {
    const FitCost cost = EstimateCost(survey);
    const QString atAll = RefuseFit(cost, gammaStep, true);
    if (!atAll.isEmpty())
        return atAll.toStdString();
    if (force)
        return {};
    const double pace = MeasurePace(survey.target), seconds = cost.poses / pace;
    std::string problem = RefuseFit(cost, gammaStep, false).toStdString();
    if (problem.empty() && seconds > longestFit)
        problem = "The fit would try " + GeneralNumber(cost.poses).toStdString() + " poses.";
    if (problem.empty())
        return {};
    return problem + " At the " + FixedNumber(pace, 0, 0).toStdString() +
           " poses a second that this machine was just seen to score, that takes about " +
           DurationText(seconds) + "; --force runs it.";
}

} // namespace

Survey CheckFit(const FitOptions &options, const FitInput &input) {
    Survey survey = SurveyFit();
    CheckTarget(options, input, survey.target);
    CheckRestraints(options, survey);
    CheckSolid(options, survey);
    if (const std::string refusal = Refusal(survey, options.force); !refusal.empty())
        throw std::runtime_error(refusal);
    return survey;
}

} // namespace Batch
