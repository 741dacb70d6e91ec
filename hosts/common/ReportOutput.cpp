#include "hosts/common/ReportOutput.h"

#include "hosts/common/FitJson.h"

#include "hosts/report/Report.h"

#include <sstream>

namespace hosts {

namespace {

report::ReportedModel ModelOf(const std::string &file, const std::vector<VARNO::Chain *> &chains) {
    return {file, {chains.begin(), chains.end()}};
}

std::vector<report::ReportedModel> ModelsOf(const std::vector<SolidFile> &files) {
    std::vector<report::ReportedModel> models;
    for (const SolidFile &file : files)
        models.push_back(ModelOf(file.file, file.chains));
    return models;
}

report::Sources SourcesOf(const PlaceInput &input, const PlaceOptions &options) {
    report::Sources sources{.map = input.map,
                            .movedMap = nullptr,
                            .models = {},
                            .fixed = ModelsOf(input.fixed),
                            .command = options.command};
    if (options.parts.empty())
        sources.models.push_back(ModelOf(input.file, input.chains));
    for (const PlaceModel &part : input.parts)
        sources.models.push_back(ModelOf(part.file, part.chains));
    return sources;
}

/// `writeJson` writes the record into a stream.
template <class Json>
void Deliver(const std::optional<std::string> &file, const report::Sources &sources, Json writeJson,
             DeliveryWriter &writer) {
    if (!file)
        return;
    writer.Write(*file, "the report", [&] {
        std::ostringstream json;
        writeJson(json);
        report::WriteReport(*file, json.str(), sources);
    });
}

} // namespace

void DeliverReport(const PlaceRecord &record, const PlaceInput &input, DeliveryWriter &writer) {
    Deliver(
        record.options.report, SourcesOf(input, record.options),
        [&](std::ostream &out) { WritePlaceJson(out, record); }, writer);
}

void DeliverReport(const AssemblyRecord &record, const PlaceInput &input, DeliveryWriter &writer) {
    Deliver(
        record.options.report, SourcesOf(input, record.options),
        [&](std::ostream &out) { WriteAssemblyJson(out, record); }, writer);
}

void DeliverReport(const FitRecord &record, const FitInput &input, DeliveryWriter &writer) {
    const report::Sources sources{.map = input.map,
                                  .movedMap = nullptr,
                                  .models = {ModelOf(record.options.target, {input.target})},
                                  .fixed = ModelsOf(input.solids),
                                  .command = record.options.command};
    Deliver(
        record.options.report, sources, [&](std::ostream &out) { WriteFitJson(out, record); }, writer);
}

} // namespace hosts
