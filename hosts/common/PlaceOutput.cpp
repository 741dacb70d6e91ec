#include "hosts/common/PlaceOutput.h"

#include "base/Words.h"

#include "hosts/common/Outputs.h"
#include "hosts/common/ReportOutput.h"

#include "formats/files/ReplaceFile.h"
#include "solutions/ResultsFile.h"

#include <QBuffer>

#include <algorithm>

using namespace placement;

namespace hosts {

namespace {

/// A place as the record of a results list.
SolutionScore SolutionOf(const Place &place) {
    SolutionScore solution;
    const UnitQuaternion q = QuaternionOf(place.pose.rotation);
    solution.rotation.Set(q.w, q.x, q.y, q.z);
    solution.translation.setValue(float(place.translation.x), float(place.translation.y),
                                  float(place.translation.z), false);
    solution.score = place.score;
    return solution;
}

/// The list's best place stands last, as that of a fit.
void WriteResultsList(const std::string &file, const std::vector<Place> &places) {
    std::list<SolutionScore> list;
    for (const Place &place : places)
        list.push_front(SolutionOf(place));
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    solutions::WriteResults(buffer, list);
    formats::ReplaceFile(file, [&](std::ostream &out) { out.write(buffer.data().data(), buffer.size()); });
}

} // namespace

void CheckPlaceOutputs(const PlaceOptions &options, formats::StructureFormat format) {
    CheckViewerScript(options.viewerScript);
    std::vector<std::string> outputs = RankedFiles(options.modelPrefix, options.models, format);
    for (const auto &output :
         {options.results, options.json, options.mirroredMap, options.report, options.viewerScript})
        if (output)
            outputs.push_back(*output);
    std::vector<std::string> inputs = options.fixed;
    inputs.insert(inputs.end(), {options.map, options.model});
    CheckOutputs(outputs, inputs);
}

Delivery WritePlaceOutputs(const PlaceRecord &record, const PlaceInput &input) {
    const PlaceOptions &options = record.options;
    const std::vector<Place> &places = record.result.places;
    const std::string count = base::Counted(places.size(), "place");
    DeliveryWriter writer;
    if (options.results)
        writer.Write(*options.results, count, [&] { WriteResultsList(*options.results, places); });
    if (options.json)
        writer.Write(*options.json, count + " in full precision", [&] {
            formats::ReplaceFile(*options.json, [&](std::ostream &out) { WritePlaceJson(out, record); });
        });
    if (options.mirroredMap && record.IsMirrored())
        writer.Write(*options.mirroredMap, "the mirrored map", [&] {
            formats::WriteMap(*options.mirroredMap, *Mirrored(*input.map, input.map->GetName()),
                              "mirrored along x");
        });
    const std::vector<std::string> models = RankedFiles(options.modelPrefix, options.models, input.format);
    const std::vector<const VARNO::Compound *> chains(input.chains.begin(), input.chains.end());
    for (std::size_t i = 0; i < std::min(models.size(), places.size()); ++i)
        writer.Write(models[i], "the model at place " + std::to_string(i + 1), [&] {
            const SolutionScore solution = SolutionOf(places[i]);
            formats::WriteStructure(models[i], input.format, chains,
                                    VARNO::Transform(solution.rotation, solution.translation));
        });
    DeliverReport(record, input, writer);
    return writer.Result();
}

std::unique_ptr<VARNO::Grid> Mirrored(const VARNO::Grid &map, const std::string &name) {
    auto mirrored =
        std::make_unique<VARNO::Grid>(name, map.Dimensions(), map.Origin(), map.Spacing(), map.Angles());
    const std::size_t row = map.Dimensions()[0];
    for (std::size_t first = 0; first < map.Values().size(); first += row)
        std::ranges::reverse_copy(map.Values().subspan(first, row),
                                  mirrored->Values().begin() + std::ptrdiff_t(first));
    return mirrored;
}

} // namespace hosts
