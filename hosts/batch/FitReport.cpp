#include "FitReport.h"

#include "cli/Printable.h"

#include "base/Words.h"

#include "base/Numbers.h"

#include "hosts/common/Chains.h"

#include "fit/Cost.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iostream>

using namespace VARNO;

using namespace hosts;

namespace batch {

namespace {

constexpr std::size_t rowsShown = 10;
constexpr std::uint64_t sampleSize = 4096;

void Print(const QString &line) {
    std::cout << line.toStdString() << '\n';
}

/// A line of the first part; an empty label goes on with the line before.
void PrintItem(const QString &label, const QString &text) {
    Print(label.leftJustified(12) + text);
}

QString Text(const std::string &text) {
    return QString::fromStdString(cli::Printable(text));
}

template <class Vector3>
QString Triple(const Vector3 &numbers, const QString &separator, int decimals) {
    return base::FixedNumber(numbers[0], 0, decimals) + separator +
           base::FixedNumber(numbers[1], 0, decimals) + separator +
           base::FixedNumber(numbers[2], 0, decimals);
}

QString ChainWord(const std::vector<Chain *> &chains) {
    return (chains.size() == 1 ? "chain " : "chains ") + Text(ChainNames(chains));
}

void ReportMap(const FitOptions &options, const FitInput &input) {
    const Grid &map = *input.map;
    const auto &size = map.Dimensions();
    PrintItem("Map", Text(options.map));
    PrintItem("", QString("%1 x %2 x %3 voxels of %4 Å")
                      .arg(size[0])
                      .arg(size[1])
                      .arg(size[2])
                      .arg(Triple(map.Spacing(), " x ", 3)));
    PrintItem("", QString("origin (%1) Å, from the header's %2")
                      .arg(Triple(map.Origin(), ", ", 2), Text(input.mapReport.originSource)));
}

void ReportTarget(const FitOptions &options, const FitInput &input, const fit::Target &target) {
    PrintItem("Target", Text(options.target));
    PrintItem("", QString("chain %1, %2 residues, centre (%3) Å")
                      .arg(Text(ChainNames({input.target})))
                      .arg(target.points.size())
                      .arg(Triple(target.centre, ", ", 2)));
}

/// The chains of a solid file that are not part of the solid.
QString LeftOut(const SolidFile &solid, const Chain *target) {
    QString text;
    for (Chain *chain : solid.leftOut)
        text += (text.isEmpty() ? "" : ", ") + Text(ChainNames({chain})) +
                (chain == target ? " (the target)" : "");
    if (solid.hasOthers)
        text += QString(text.isEmpty() ? "" : ", ") + "ligands and waters";
    return text;
}

void ReportSolid(const FitInput &input, const fit::FitParameters &parameters, const fit::Survey &survey) {
    for (const SolidFile &solid : input.solids) {
        PrintItem("Solid", Text(solid.file));
        PrintItem("", ChainWord(solid.chains));
        if (const QString leftOut = LeftOut(solid, input.target); !leftOut.isEmpty())
            PrintItem("", "left out: " + leftOut);
    }
    if (!input.solids.empty())
        PrintItem("", QString("%1 of %2 residues lie within %3 Å of the target's centre")
                          .arg(survey.solid.points.size())
                          .arg(parameters.solid.size())
                          .arg(base::GeneralNumber(double(parameters.inclusionDistance))));
}

void ReportRestraints(const FitOptions &options, const fit::Survey &survey) {
    if (!options.restraints)
        return;
    PrintItem("Restraints", Text(*options.restraints));
    PrintItem("", Text(base::Counted(survey.target.restraints.size(), "restraint")) +
                      " on residues of the target");
}

/// A number of poses, which need not fit an integer.
QString PoseNumber(double poses) {
    return poses < 1e15 ? Text(base::Grouped(std::uint64_t(poses))) : base::GeneralNumber(poses);
}

void ReportSearch(const FitOptions &options, const fit::FitParameters &parameters,
                  const fit::Survey &survey) {
    const fit::FitCost cost = fit::EstimateCost(parameters, survey);
    const int steps = fit::OddCount(options.translationSteps);
    PrintItem("Search", QString("%1 axes, turned about in steps of %2°")
                            .arg(base::GeneralNumber(cost.axes), base::GeneralNumber(options.rotationStep)));
    PrintItem("", QString("%1 x %1 x %1 translations in steps of %2 Å")
                      .arg(steps)
                      .arg(base::GeneralNumber(options.translationStep)));
    PrintItem("", QString("about %1 poses").arg(PoseNumber(cost.poses)));
    Print("");
}

double Length(const Vector<float, 3> &v) {
    return std::sqrt(double(v.SquaredLength()));
}

/// Angle of the rotation, degrees from 0 to 180.
double TurnOf(const Quaternion &q) {
    const double sine = std::hypot(q.x(), q.y(), q.z());
    return 2 * std::atan2(sine, std::abs(q.w())) * 180 / 3.141592653589793;
}

double DisplacementOf(const SolutionScore &solution, const Vertex &centre) {
    return Length(Transform(solution.rotation, solution.translation) * centre - centre);
}

QString AboveMean(double score, const search::PoseSample &sample) {
    return sample.deviation > 0 ? base::FixedNumber((score - sample.mean) / sample.deviation, 0, 2)
                                : QString("-");
}

/// One line of the table; the cells' widths are those of the head.
void PrintRow(const std::array<QString, 6> &cells, bool unsorted) {
    static constexpr int widths[] = {4, 13, 15, 9, 17, 14};
    QString line;
    for (std::size_t i = 0; i < (unsorted ? 6 : 5); ++i)
        line += cells[i].rightJustified(widths[i]);
    Print(line);
}

void PrintTable(const FitRecord &record) {
    const bool unsorted = record.solutions.size() < std::size_t(std::max(record.options.keep, 0));
    PrintRow({"Rank", "Score", "SD above mean", "Turn, °", "Centre moved, Å", "Rank in file"}, unsorted);
    for (std::size_t i = 0; i < std::min(rowsShown, record.solutions.size()); ++i) {
        const auto &[solution, rank, rankInFile] = record.solutions[i];
        PrintRow(
            {QString::number(rank), base::FixedNumber(solution->score, 0, 3),
             AboveMean(solution->score, record.sample), base::FixedNumber(TurnOf(solution->rotation), 0, 1),
             base::FixedNumber(DisplacementOf(*solution, record.centre), 0, 2), QString::number(rankInFile)},
            unsorted);
    }
    if (unsorted)
        Print("\nFewer solutions than were to be kept: the results file is in the order of the search,\n"
              "and ranks in it, counted from its end, differ.");
}

void PrintSample(const FitRecord &record) {
    const std::uint64_t poses = record.translations * (1 + record.axes * record.angles);
    const std::uint64_t size = std::min(sampleSize, poses), used = record.sample.poses;
    const QString which = used < size
                              ? QString("those %1 of %2 poses, spread evenly over the search, that do not "
                                        "clash:")
                                    .arg(used)
                                    .arg(size)
                              : QString("%1 poses spread evenly over the search:").arg(size);
    Print(QString("\nScores are compared with %1\nmean %2, standard deviation (SD) %3.")
              .arg(which, base::GeneralNumber(record.sample.mean),
                   base::GeneralNumber(record.sample.deviation)));
}

} // namespace

void ReportInput(const FitOptions &options, const FitInput &input, const fit::FitParameters &parameters,
                 const fit::Survey &survey) {
    ReportMap(options, input);
    ReportTarget(options, input, survey.target);
    ReportSolid(input, parameters, survey);
    ReportRestraints(options, survey);
    ReportSearch(options, parameters, survey);
    std::cout << std::flush;
}

void ReportSolutions(const FitRecord &record, const std::vector<std::string> &written) {
    Print(QString("%1 poses in %2, %3 accepted, %4 kept\n")
              .arg(Text(base::Grouped(record.poses.tried)), Text(base::DurationText(record.seconds)),
                   Text(base::Grouped(record.poses.accepted)), Text(base::Grouped(record.solutions.size()))));
    if (!record.solutions.empty()) {
        PrintTable(record);
        PrintSample(record);
    }
    for (const std::string &line : written)
        Print((line == written.front() ? "\nWrote " : "Wrote ") + Text(line));
}

} // namespace batch
