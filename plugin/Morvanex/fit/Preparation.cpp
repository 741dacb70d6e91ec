#include "fit/Preparation.h"

#include "base/Numbers.h"

#include "Assertion.h"
#include "fit/Axes.h"

#include <iomanip>
#include <sstream>

using namespace VARNO;

namespace fit {

namespace {

void ReportRestraints(const std::vector<RestraintRecord> &records) {
    for (const auto &[residue, position] : records)
        qDebug("Residue: %s should prefer position ( %s %s %s )", qUtf8Printable(residue),
               qPrintable(base::FixedNumber(position[0], 7, 3)),
               qPrintable(base::FixedNumber(position[1], 7, 3)),
               qPrintable(base::FixedNumber(position[2], 7, 3)));
}

void ReportTarget(const Target &target) {
    for (std::size_t i = 0; i < target.invalidResidues; ++i)
        qDebug("Invalid Residues in structure");
    if (target.points.empty())
        WarnAssertion("0 < count", "Morvanex", 580);
    qDebug("Extra scores %zu", target.restraints.size() + 1);
}

void ReportSolid(const Solid &solid) {
    for (std::size_t i = 0; i < solid.invalidResidues; ++i)
        qDebug("Invalid Residues in solid");
    std::ostringstream line;
    line.imbue(std::locale::classic());
    line << std::setprecision(3);
    const auto corner = [&line](const Vertex &v) -> std::ostream & {
        return line << std::setw(6) << v[0] << ',' << std::setw(6) << v[1] << ',' << std::setw(6) << v[2];
    };
    line << "Solid residues: " << solid.points.size() << ", box (";
    corner(solid.low) << ") - (";
    corner(solid.high) << ')';
    qDebug("%s", line.str().c_str());
}

} // namespace

std::vector<Vertex> TranslationOffsets(int count, double step) {
    const int half = count / 2;
    const auto offset = [&](int i) { return float((i - half) * step); };
    std::vector<Vertex> offsets;
    if (count > 0)
        offsets.reserve(std::size_t(count) * std::size_t(count) * std::size_t(count));
    for (int i = 0; i < count; ++i)
        for (int j = 0; j < count; ++j)
            for (int k = 0; k < count; ++k)
                offsets.emplace_back(offset(i), offset(j), offset(k), false);
    return offsets;
}

Survey SurveyFit(const FitParameters &parameters) {
    Survey survey;
    survey.target = CollectTarget(parameters.target, parameters.restraints);
    survey.solid = CollectSolid(parameters.solid, survey.target.centre, parameters.inclusionDistance);
    return survey;
}

Preparation PrepareFit(const FitParameters &parameters, const Survey &survey) {
    Preparation fit;
    fit.map = parameters.map;
    fit.target = survey.target;
    fit.angleStep = parameters.angleStep;
    ReportRestraints(parameters.restraints);
    fit.axes = RotationAxes(parameters.axisDepth);
    qDebug("Points %zu", fit.axes.size());
    ReportTarget(survey.target);
    qDebug("Solid inclusion distance: %s", qPrintable(base::FixedNumber(parameters.inclusionDistance, 7, 3)));
    if (!parameters.solid.empty()) {
        ReportSolid(survey.solid);
        fit.keepOut = BuildKeepOut(survey.solid);
    }
    fit.offsets = TranslationOffsets(OddCount(parameters.translationCount), parameters.translationStep);
    return fit;
}

} // namespace fit
