#include "hosts/common/FitChecks.h"

#include "base/Numbers.h"
#include "base/Words.h"

#include "hosts/common/Chains.h"
#include "hosts/common/Pace.h"
#include "hosts/common/RestraintsCheck.h"

#include "fit/Cost.h"
#include "formats/files/FileError.h"

#include <algorithm>
#include <cmath>

namespace hosts {

namespace {

using formats::FileError;

constexpr double longestFit = 365.25 * 24 * 3600; ///< seconds
constexpr double fewPoses = 1e10;                 ///< no target is so large that these take as long

void CheckTarget(const FitOptions &options, const FitInput &input, const fit::Target &target,
                 const WarningSink &warn) {
    const std::string chain = "chain " + ChainNames({input.target});
    if (target.points.empty())
        throw FileError(options.target, chain, "no residue has a position (an atom CA, C4' or P)");
    if (target.invalidResidues > 0)
        warn(options.target + ": " + chain + ": skips " + base::Counted(target.invalidResidues, "residue") +
             " without a position (an atom CA, C4' or P)");
}

std::string FirstOf(const std::vector<std::string> &names) {
    constexpr std::size_t shown = 10;
    std::string text;
    for (std::size_t i = 0; i < std::min(shown, names.size()); ++i)
        text += (i > 0 ? ", " : "") + names[i];
    return names.size() > shown ? text + " and " + std::to_string(names.size() - shown) + " more" : text;
}

void CheckRestraints(const FitOptions &options, const fit::FitParameters &parameters,
                     const fit::Survey &survey, const WarningSink &warn) {
    if (!options.restraints)
        return;
    const std::vector<std::string> unknown = UnknownResidues(parameters.restraints, parameters.target);
    const std::string problem = "the target has no residue of that name with a position: " + FirstOf(unknown);
    if (survey.target.restraints.empty())
        throw FileError(*options.restraints, "", "no record names a residue of the target: " + problem);
    if (!unknown.empty())
        warn(*options.restraints + ": " + problem);
}

void CheckSolid(const FitOptions &options, const fit::Survey &survey, const WarningSink &warn) {
    if (survey.solid.invalidResidues > 0)
        warn("solid: skips " + base::Counted(survey.solid.invalidResidues, "residue") +
             " without a position (an atom CA, C4' or P)");
    if (!options.solids.empty() && survey.solid.points.empty())
        warn("the solid has no effect: none of its residues lies within " +
             base::GeneralNumber(options.inclusionDistance).toStdString() + " Å of the target's centre");
}

/// Throws where the fit cannot be run or would take too long.
void CheckCost(const FitOptions &options, const fit::FitParameters &parameters, const fit::Survey &survey) {
    const fit::FitCost cost = fit::EstimateCost(parameters, survey);
    const QString atAll = fit::RefuseFit(cost, parameters.angleStep, true);
    if (!atAll.isEmpty())
        throw std::runtime_error(atAll.toStdString());
    if (options.force || cost.poses < fewPoses)
        return;
    // With a log poses are scored one by one.
    const double pace =
        MeasurePace(parameters, survey.target,
                    {.poseByPose = options.log.has_value(), .threads = unsigned(options.threads)});
    const double seconds = cost.poses / pace;
    std::string problem = fit::RefuseFit(cost, parameters.angleStep, false).toStdString();
    if (problem.empty() && seconds > longestFit)
        problem = "The fit would try " + base::GeneralNumber(cost.poses).toStdString() + " poses.";
    if (!problem.empty())
        throw FitTooLong(problem + " At " + base::Grouped(std::uint64_t(pace)) +
                         " poses a second, measured on this machine, that takes about " +
                         base::DurationText(seconds));
}

} // namespace

fit::Survey CheckFit(const FitOptions &options, const FitInput &input, const fit::FitParameters &parameters,
                     const WarningSink &warn) {
    fit::Survey survey = fit::SurveyFit(parameters);
    CheckTarget(options, input, survey.target, warn);
    CheckRestraints(options, parameters, survey, warn);
    CheckSolid(options, survey, warn);
    CheckCost(options, parameters, survey);
    return survey;
}

std::string WarningOfReach(const fit::Survey &survey, const FitOptions &options, const VARNO::Grid &map) {
    const VARNO::Vertex &centre = survey.target.centre;
    double radius = 0;
    for (const auto &[point, tag] : survey.target.points)
        radius = std::max(radius, std::sqrt(double((point - centre).SquaredLength())));
    const int steps = options.translationSteps / 2;
    const double travel = std::abs(options.translationStep) * steps;
    double fromCentre[3] = {}, fromCube[3] = {};
    for (const unsigned i : {0u, 1u, 2u}) {
        // Points count up to one and a half spacings before the first voxel and half a one behind the last.
        const double spacing = double(map.Spacing()[i]), origin = double(map.Origin()[i]);
        const double low = origin - 1.5 * spacing, high = origin + (map.Dimensions()[i] - 0.5) * spacing;
        fromCentre[i] = std::max({0.0, low - double(centre[i]), double(centre[i]) - high});
        fromCube[i] = std::max(0.0, fromCentre[i] - travel);
    }
    const auto length = [](const double(&v)[3]) { return std::hypot(v[0], v[1], v[2]); };
    if (!(length(fromCube) > radius))
        return {};
    const double distance = length(fromCentre) - radius;
    return "no pose of the search touches the map: the target lies " +
           (distance < 1e15 ? base::Grouped(std::uint64_t(distance))
                            : base::GeneralNumber(distance).toStdString()) +
           " Å from it; are both in one frame?";
}

} // namespace hosts
