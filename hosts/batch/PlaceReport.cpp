#include "PlaceReport.h"

#include "base/Numbers.h"
#include "base/Words.h"

#include "hosts/common/Chains.h"

#include "placement/Forecast.h"

#include <algorithm>
#include <functional>
#include <iostream>

using namespace hosts;
using namespace placement;

namespace batch {

namespace {

constexpr std::size_t rowsShown = 10;

void Print(const QString &line) {
    std::cout << line.toStdString() << '\n';
}

/// A line of the first part; an empty label goes on with the line before.
void PrintItem(const QString &label, const QString &text) {
    Print(label.leftJustified(12) + text);
}

QString Text(const std::string &text) {
    return QString::fromStdString(text);
}

QString Percent(double share) {
    return base::FixedNumber(100 * share, 0, 0) + " %";
}

/// A column of the table.
struct Column {
    QString head;
    int width;
    std::function<QString(const Place &)> cell;
};

/// Of a refined place no probability is known.
std::vector<Column> Columns(bool judged, bool hasFixed) {
    std::vector<Column> columns = {
        {"Score", 10, [](const Place &place) { return base::FixedNumber(place.score, 0, 1); }},
        {"Probability", 13,
         [judged](const Place &place) {
             return judged ? base::FixedNumber(place.probability, 0, 3) : QString("-");
         }},
        {"In density", 12, [](const Place &place) { return Percent(place.inDensity); }}};
    if (hasFixed)
        columns.push_back({"Overlap", 9, [](const Place &place) { return Percent(place.overlap); }});
    columns.push_back({"Centre, Å", 28, [](const Place &place) {
                           const Point &c = place.pose.centre;
                           return base::FixedNumber(c.x, 9, 2) + base::FixedNumber(c.y, 9, 2) +
                                  base::FixedNumber(c.z, 9, 2);
                       }});
    return columns;
}

void PrintTable(const PlacementResult &result, bool hasFixed) {
    const std::vector<Place> &places = result.places;
    const std::vector<Column> columns = Columns(result.verdict != Verdict::Refined, hasFixed);
    QString head = "Place";
    for (const Column &column : columns)
        head += column.head.rightJustified(column.width);
    Print(head);
    for (std::size_t i = 0; i < std::min(rowsShown, places.size()); ++i) {
        QString row = QString::number(i + 1).rightJustified(5);
        for (const Column &column : columns)
            row += column.cell(places[i]).rightJustified(column.width);
        Print(row);
    }
}

} // namespace

void ReportPlaceInput(const PlaceOptions &options, const PlaceInput &input) {
    const VARNO::Grid &map = *input.map;
    const auto &size = map.Dimensions();
    const auto &voxel = map.Spacing();
    PrintItem("Map", Text(options.map));
    PrintItem("",
              QString("%1 x %2 x %3 voxels of %4 x %5 x %6 Å, resolution %7")
                  .arg(size[0])
                  .arg(size[1])
                  .arg(size[2])
                  .arg(base::FixedNumber(double(voxel[0]), 0, 3), base::FixedNumber(double(voxel[1]), 0, 3),
                       base::FixedNumber(double(voxel[2]), 0, 3),
                       options.resolution
                           ? base::GeneralNumber(input.resolution) + " Å"
                           : base::FixedNumber(input.resolution, 0, 1) + " Å, estimated from the map"));
    PrintItem("Model", Text(options.model));
    PrintItem("", Text((input.chains.size() == 1 ? "chain " : "chains ") + ChainNames(input.chains) + ", " +
                       base::Counted(input.residues.size(), "residue")));
    if (input.lowConfidence > 0)
        PrintItem("", Text(base::Counted(input.lowConfidence, "residue") +
                           " of low confidence left out of the search"));
    for (const SolidFile &fixed : input.fixed) {
        PrintItem(&fixed == &input.fixed.front() ? "Fixed" : "", Text(fixed.file));
        PrintItem("", Text((fixed.chains.size() == 1 ? "chain " : "chains ") + ChainNames(fixed.chains)));
    }
    if (options.scope != PlaceScope::Refine)
        PrintItem("Forecast", Text(ForecastText(PredictedSignal(input.atoms.size(), input.resolution))));
    Print("");
    std::cout << std::flush;
}

namespace {

/// Whether a part of the map was left out, and which size the rest has.
void ReportTrimming(const PlaceRecord &record, const PlaceInput &input) {
    const auto &searched = record.result.searched;
    const auto &size = input.map->Dimensions();
    if (searched[0] < size[0] || searched[1] < size[1] || searched[2] < size[2])
        PrintItem("Searched", QString("the part of %1 x %2 x %3 voxels that holds density")
                                  .arg(searched[0])
                                  .arg(searched[1])
                                  .arg(searched[2]));
}

} // namespace

void ReportPlaces(const PlaceRecord &record, const PlaceInput &input,
                  const std::vector<std::string> &written) {
    if (!record.options.quiet)
        ReportTrimming(record, input);
    if (record.hand)
        PrintItem("Hand", Text(HandText(*record.hand)));
    PrintItem("Verdict", Text(VerdictText(record.result)));
    if (!record.result.places.empty()) {
        Print("");
        PrintTable(record.result, !record.fixed.empty());
    }
    for (const std::string &line : written)
        Print((line == written.front() ? "\nWrote " : "Wrote ") + Text(line));
}

} // namespace batch
