#include "hosts/common/MapInMap.h"

#include "base/Numbers.h"
#include "base/Words.h"

#include "hosts/common/JsonText.h"
#include "hosts/common/Outputs.h"
#include "hosts/common/ParameterError.h"
#include "hosts/common/PlaceInput.h"
#include "hosts/common/PlaceRecord.h"
#include "hosts/common/ReportOutput.h"

#include "formats/files/ReplaceFile.h"

#include <algorithm>
#include <functional>

using namespace placement;
using VARNO::Grid;

namespace hosts {

namespace {

Json Head(const MapInMapRecord &record) {
    const PlaceOptions &options = record.options;
    const MapInMapResult &all = record.result;
    const PlacementResult &result = all.result;
    const bool judged = result.verdict != Verdict::Refined;
    return {
        {"format", "morvanex place"},
        {"version", 1},
        {"program", "morvanex " MORVANEX_VERSION},
        {"placed", result.verdict == Verdict::Placed},
        {"verdict", VerdictName(result.verdict)},
        {"statement", VerdictText(result)},
        {"confidence", judged ? ConfidenceJson(result.confidence) : Json(nullptr)},
        {"hand",
         {{"verdict", HandName(all.hand)},
          {"statement", MapHandText(all)},
          {"placesAreMirrored", all.motion.mirrored},
          {"asGiven", {{"probability", all.asGiven}, {"confidence", ConfidenceJson(all.given)}}},
          {"mirrored", {{"probability", 1 - all.asGiven}, {"confidence", ConfidenceJson(all.mirrored)}}}}},
        {"correlation",
         {{"statement", CorrelationText(all)},
          {"resolutionAtHalf", ResolutionAt(all.shells, 0.5)},
          {"resolutionAt0.143", ResolutionAt(all.shells, 0.143)}}},
        {"input",
         {{"map", options.map},
          {"movedMap", options.model},
          {"resolution", options.resolution.value_or(0)},
          {"inverted", options.invert},
          {"points", all.points},
          {"pointsResolution", all.resolution}}},
        {"search",
         {{"voxels", result.searched},
          {"scanResolution", result.scanResolution},
          {"rotations", result.rotations},
          {"cancelled", result.cancelled},
          {"seconds", record.seconds}}},
    };
}

/// The centre of a map's box, and how far its corners lie from it.
Sphere BoxOf(const Grid &map) {
    const VolumeView view = ViewOf(map);
    const Point diagonal{double(view.count[0]) * view.spacing[0], double(view.count[1]) * view.spacing[1],
                         double(view.count[2]) * view.spacing[2]};
    return {view.origin + 0.5 * diagonal, 0.5 * Length(diagonal)};
}

/// What only a structure has.
void RefuseStructures(const PlaceOptions &options) {
    const auto refuse = [](bool given, const std::string &parameter) {
        if (given)
            throw ParameterError(parameter, "is for structures, and the model is a map");
    };
    refuse(options.chains.has_value(), "chain");
    refuse(options.minPlddt.has_value(), "min-plddt");
    refuse(!options.fixed.empty(), "fixed");
    refuse(options.mirroredMap.has_value(), "mirrored-map");
    refuse(options.symmetry.has_value(), "symmetry");
    refuse(options.results.has_value(), "results");
    refuse(options.models > 0, "models");
    refuse(options.viewerScript.has_value(), "viewer-script");
}

} // namespace

MapInMapInput ReadMapInMapInput(const PlaceOptions &options, const WarningSink &warn, InputSource &source) {
    RefuseStructures(options);
    if (!options.resolution)
        throw ParameterError("resolution",
                             "is needed where the model is a map: that of the coarser of the two");
    MapInMapInput input{LoadMap(options.map, warn, nullptr, source),
                        LoadMap(options.model, warn, nullptr, source)};
    if (options.invert)
        std::ranges::transform(input.map->Values(), input.map->Values().begin(), std::negate());
    return input;
}

void CheckMapInMapOutputs(const PlaceOptions &options) {
    std::vector<std::string> outputs;
    for (const auto &output : {options.json, options.movedMap, options.report})
        if (output)
            outputs.push_back(*output);
    CheckOutputs(outputs, {options.map, options.model});
}

void FindMapOf(const MapInMapInput &input, MapInMapRecord &record, Monitor &monitor) {
    const PlaceOptions &options = record.options;
    PlacementParameters parameters{.resolution = options.resolution.value(),
                                   .threads = unsigned(options.threads),
                                   .region = options.region,
                                   .neighbours = {}};
    if (options.scope == PlaceScope::Near)
        parameters.region = BoxOf(*input.moved);
    try {
        const auto find = options.scope == PlaceScope::Refine ? RefineMapInMap : FindMapInMap;
        record.result = find(ViewOf(*input.map), ViewOf(*input.moved), parameters, monitor);
    } catch (const std::invalid_argument &error) {
        throw formats::FileError(options.model, "", error.what());
    }
}

std::string MapHandText(const MapInMapResult &result) {
    switch (result.hand) {
    case Hand::AsGiven:
        return "both maps have the same hand (with a probability " + AboveOrOf(result.asGiven) + ")";
    case Hand::Mirrored:
        return "the second map is a mirror image (with a probability " + AboveOrOf(1 - result.asGiven) +
               "): places are those of the map with its voxels in the opposite order along x";
    case Hand::Unknown:
        return result.result.verdict == Verdict::Refined
                   ? "the hand was taken as it is"
                   : "the hand cannot be told (the same one with a probability " + AboveOrOf(result.asGiven) +
                         "); the second map is taken as it is";
    }
    return {};
}

std::string CorrelationText(const MapInMapResult &result) {
    const double half = ResolutionAt(result.shells, 0.5), low = ResolutionAt(result.shells, 0.143);
    if (half == 0)
        return "the maps do not agree: their shell correlation lies below 0.5 everywhere";
    return "the shell correlation falls below 0.5 at " + base::PlainFixed(half, 1) +
           " Å and below 0.143 at " + base::PlainFixed(low, 1) + " Å";
}

std::vector<std::string> WarningsOf(const MapInMapRecord &record) {
    if (record.options.movedMap && record.result.result.places.empty())
        return {*record.options.movedMap + " is not written, since the map has no place"};
    return {};
}

void WriteMapInMapJson(std::ostream &out, const MapInMapRecord &record) {
    const MapInMapResult &result = record.result;
    WriteHead(out, Head(record));
    WriteList(out, "places", result.result.places.size(), [&](std::size_t i) {
        return PlaceEntry(result.result.places[i], i + 1, result.result.verdict != Verdict::Refined);
    });
    WriteList(out, "shells", result.shells.size(), [&](std::size_t i) {
        return Json{{"wavenumber", result.shells[i].wavenumber},
                    {"correlation", result.shells[i].correlation}};
    });
    out << "\n}\n";
}

std::unique_ptr<Grid> MovedOnto(const Grid &map, const Grid &moved, const MapMotion &motion,
                                unsigned threads) {
    const VolumeView lattice = ViewOf(map);
    const Volume volume =
        MovedMap(ViewOf(moved), motion, {lattice.count, lattice.spacing, lattice.origin}, threads);
    auto grid =
        std::make_unique<Grid>(moved.GetName(), map.Dimensions(), map.Origin(), map.Spacing(), map.Angles());
    std::ranges::copy(volume.values, grid->Values().begin());
    return grid;
}

Delivery WriteMapInMapOutputs(const MapInMapRecord &record, const MapInMapInput &input) {
    const PlaceOptions &options = record.options;
    const std::vector<Place> &places = record.result.result.places;
    DeliveryWriter writer;
    if (options.json)
        writer.Write(*options.json, base::Counted(places.size(), "place") + " in full precision", [&] {
            formats::ReplaceFile(*options.json, [&](std::ostream &out) { WriteMapInMapJson(out, record); });
        });
    std::unique_ptr<Grid> moved;
    if ((options.movedMap || options.report) && !places.empty())
        moved = MovedOnto(*input.map, *input.moved, record.result.motion, unsigned(options.threads));
    if (options.movedMap && moved)
        writer.Write(*options.movedMap, "the second map in its place",
                     [&] { formats::WriteMap(*options.movedMap, *moved, "moved by morvanex place"); });
    DeliverReport(record, input, moved.get(), writer);
    return writer.Result();
}

} // namespace hosts
