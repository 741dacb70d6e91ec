#include "hosts/common/ReportOutput.h"

#include "hosts/common/FitJson.h"
#include "hosts/common/ParameterError.h"

#include "hosts/report/Report.h"
#include "hosts/report/ViewerScript.h"

#include <sstream>

namespace hosts {

namespace {

report::ReportedModel ModelOf(const std::string &file, const std::vector<VARNO::Chain *> &chains) {
    return {file, {chains.begin(), chains.end()}};
}

std::vector<report::ReportedModel> ModelsOf(const std::vector<SolidFile> &files) {
    std::vector<report::ReportedModel> models;
    models.reserve(files.size());
    for (const SolidFile &file : files)
        models.push_back(ModelOf(file.file, file.chains));
    return models;
}

report::Sources SourcesOf(const PlaceInput &input, const PlaceOptions &options) {
    report::Sources sources{
        .map = input.map, .models = {}, .fixed = ModelsOf(input.fixed), .command = options.command};
    if (options.parts.empty())
        sources.models.push_back(ModelOf(input.file, input.chains));
    for (const PlaceModel &part : input.parts)
        sources.models.push_back(ModelOf(part.file, part.chains));
    return sources;
}

/// What is asked for beside the JSON file; `writeJson` writes the record into a stream.
template <class Options, class WriteJson>
void Deliver(const Options &options, const report::Sources &sources, WriteJson writeJson,
             DeliveryWriter &writer) {
    const auto record = [&] {
        std::ostringstream json;
        writeJson(json);
        return json.str();
    };
    if (options.report)
        writer.Write(*options.report, "the report",
                     [&] { report::WriteReport(*options.report, record(), sources); });
    if (options.viewerScript)
        writer.Write(*options.viewerScript, "a script for a viewer",
                     [&] { report::WriteViewerScript(*options.viewerScript, record(), sources); });
}

} // namespace

void DeliverReport(const PlaceRecord &record, const PlaceInput &input, DeliveryWriter &writer) {
    report::Sources sources = SourcesOf(input, record.options);
    sources.mirroredMap = record.options.mirroredMap.value_or("");
    Deliver(
        record.options, sources, [&](std::ostream &out) { WritePlaceJson(out, record); }, writer);
}

void DeliverReport(const AssemblyRecord &record, const PlaceInput &input, DeliveryWriter &writer) {
    Deliver(
        record.options, SourcesOf(input, record.options),
        [&](std::ostream &out) { WriteAssemblyJson(out, record); }, writer);
}

void DeliverReport(const FitRecord &record, const FitInput &input, DeliveryWriter &writer) {
    const report::Sources sources{.map = input.map,
                                  .models = {ModelOf(record.options.target, {input.target})},
                                  .fixed = ModelsOf(input.solids),
                                  .command = record.options.command};
    Deliver(
        record.options, sources, [&](std::ostream &out) { WriteFitJson(out, record); }, writer);
}

void DeliverReport(const MapInMapRecord &record, const MapInMapInput &input, const VARNO::Grid *moved,
                   DeliveryWriter &writer) {
    const report::Sources sources{
        .map = input.map, .movedMap = moved, .models = {}, .fixed = {}, .command = record.options.command};
    Deliver(
        record.options, sources, [&](std::ostream &out) { WriteMapInMapJson(out, record); }, writer);
}

void CheckViewerScript(const std::optional<std::string> &file) {
    if (file && !report::IsViewerScript(*file))
        throw ParameterError("viewer-script",
                             *file + " ends neither in .cxc, for ChimeraX, nor in .pml, for PyMOL");
}

} // namespace hosts
