#include "PlaceReport.h"

#include "base/Numbers.h"
#include "base/Words.h"

#include "Printing.h"
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

QString Percent(double share) {
    return base::FixedNumber(100 * share, 0, 0) + " %";
}

/// Of a refined place no probability is known.
std::vector<Column<Place>> Columns(const std::vector<Place> &places, bool judged, bool hasFixed) {
    std::vector<Column<Place>> columns = {
        {"Place", 5, [&places](const Place &place) { return QString::number(&place - places.data() + 1); }},
        {"Score", 10, [](const Place &place) { return base::FixedNumber(place.score, 0, 1); }},
        {"Probability", 13,
         [judged](const Place &place) {
             return judged ? base::FixedNumber(place.probability, 0, 3) : QString("-");
         }},
        {"In density", 12, [](const Place &place) { return Percent(place.inDensity); }}};
    if (hasFixed)
        columns.push_back({"Overlap", 9, [](const Place &place) { return Percent(place.overlap); }});
    columns.push_back({"Centre, Å", 28, [](const Place &place) { return PositionText(place.pose.centre); }});
    return columns;
}

void PrintModel(const PlaceModel &model, const std::string &file) {
    PrintItem("Model", Text(file));
    PrintItem("", Text((model.chains.size() == 1 ? "chain " : "chains ") + ChainNames(model.chains) + ", " +
                       base::Counted(model.residues.size(), "residue")));
    if (model.lowConfidence > 0)
        PrintItem("", Text(base::Counted(model.lowConfidence, "residue") +
                           " of low confidence left out of the search"));
}

} // namespace

void PrintPlaces(const PlacementResult &result, bool hasFixed) {
    const std::span<const Place> places(result.places);
    PrintTable<Place>(Columns(result.places, result.verdict != Verdict::Refined, hasFixed),
                      places.first(std::min(rowsShown, places.size())));
}

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
    if (options.parts.empty())
        PrintModel(input, options.model);
    for (const PlaceModel &part : input.parts)
        PrintModel(part, part.file);
    for (const SolidFile &fixed : input.fixed) {
        PrintItem(&fixed == &input.fixed.front() ? "Fixed" : "", Text(fixed.file));
        PrintItem("", Text((fixed.chains.size() == 1 ? "chain " : "chains ") + ChainNames(fixed.chains)));
    }
    if (options.parts.empty() && options.scope != PlaceScope::Refine)
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
    if (record.symmetry)
        PrintSymmetry(*record.symmetry);
    PrintItem("Verdict", Text(VerdictText(record.result)));
    if (!record.result.places.empty()) {
        Print("");
        PrintPlaces(record.result, !record.fixed.empty());
    }
    PrintWritten(written);
}

} // namespace batch
