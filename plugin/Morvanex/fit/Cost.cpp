#include "fit/Cost.h"

#include "base/Memory.h"

#include "base/Numbers.h"

#include "fit/Angles.h"
#include "solutions/RecordBytes.h"

#include <algorithm>
#include <cmath>
#include <list>

using namespace VARNO;

namespace fit {

namespace {

/// A number that the reader can take in: whole while short, else with an exponent.
QString Figure(double number) {
    return number < 1e6 ? base::FixedNumber(number, 0, 0) : base::GeneralNumber(number);
}

QString GiB(double bytes) {
    return QString::fromStdString(base::GiB(bytes));
}

/// Values of the angle: counted, since where the step divides the turn rounding decides on the last one. So
/// many that counting would take a while need not be known to the last.
double AngleCount(double step) {
    constexpr double countable = 1e6;
    const double steps = fullTurn / step;
    return steps >= 0 && steps < countable ? double(Angles(step).Count()) : std::floor(steps);
}

} // namespace

FitCost EstimateCost(const FitParameters &parameters, const Survey &survey, double bytesBeside) {
    // An axis stands in the list and, while the list is built, in a set of nodes.
    constexpr double axisBytes = sizeof(Vertex) + 48.0;
    const double record = solutions::RecordBytes(survey.target.restraints.size());
    const double count = std::max(OddCount(parameters.translationCount), 0);
    const double offsets = count * count * count;
    FitCost cost;
    cost.axes = 5 * std::pow(4.0, std::max(parameters.axisDepth, 0)) + 1;
    cost.angles = AngleCount(parameters.angleStep);
    cost.poses = offsets * (1 + cost.axes * cost.angles);
    cost.axisBytes = cost.axes * axisBytes;
    cost.offsetBytes = offsets * sizeof(Vertex);
    cost.identityBytes = offsets * record;
    const double keep = std::max(parameters.keep, 0);
    cost.listBytes = std::max((2 * keep + 1) * record, keep * (record + bytesBeside));
    if (!survey.solid.points.empty()) {
        const KeepOutLayout layout = LayOutKeepOut(survey.solid);
        cost.keepOutBytes = layout.nodes[0] * layout.nodes[1] * layout.nodes[2] * sizeof(float);
    }
    return cost;
}

QString RefuseFit(const FitCost &cost, double angleStep, bool anyNumberOfPoses) {
    const QString degrees = base::GeneralNumber(angleStep * 180.0 / 3.141592653589793);
    if (!(angleStep > 0) || !std::isfinite(angleStep))
        return QString("The rotation step is %1 degrees; it must be a positive number.").arg(degrees);
    if (!GrowsToFullTurn(angleStep))
        return QString("The rotation step of %1 degrees is too small for an angle to grow by it.")
            .arg(degrees);
    if (cost.poses > poseLimit && !anyNumberOfPoses)
        return QString("The fit would try %1 poses (%2 axes, %3 angles about each, %4 translations); the "
                       "limit is %5. Choose larger steps, fewer translations or less recursion.")
            .arg(Figure(cost.poses), Figure(cost.axes), Figure(cost.angles),
                 Figure(cost.offsetBytes / sizeof(Vertex)), Figure(poseLimit));
    if (const double limit = base::MemoryLimit(); !(cost.Bytes() <= limit))
        return QString("The fit would need %1 of memory (axes %2, translations %3, poses of the identity "
                       "rotation %4, solutions kept %5, keep-out grid %6); the limit is %7, three quarters "
                       "of this machine's.")
            .arg(GiB(cost.Bytes()), GiB(cost.axisBytes), GiB(cost.offsetBytes), GiB(cost.identityBytes),
                 GiB(cost.listBytes), GiB(cost.keepOutBytes), GiB(limit));
    return {};
}

} // namespace fit
