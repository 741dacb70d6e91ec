#include "hosts/common/FitOutput.h"

#include "hosts/common/FitJson.h"
#include "hosts/common/Outputs.h"
#include "hosts/common/ReportOutput.h"

#include "formats/files/FileError.h"
#include "formats/files/ReplaceFile.h"
#include "solutions/ResultsFile.h"

#include <QBuffer>

#include <algorithm>
#include <filesystem>

using namespace VARNO;

namespace hosts {

namespace {

using formats::FileError;

void WriteResultsFile(const std::string &file, const std::list<SolutionScore> &solutions) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    solutions::WriteResults(buffer, solutions);
    formats::ReplaceFile(file, [&](std::ostream &out) { out.write(buffer.data().data(), buffer.size()); });
}

} // namespace

std::vector<std::string> ModelFiles(const FitOptions &options, formats::StructureFormat format) {
    const int count = std::min(options.models, std::max(options.keep, 0));
    return RankedFiles(options.modelPrefix, count, format);
}

void CheckFitOutputs(const FitOptions &options, const std::vector<std::string> &models) {
    CheckViewerScript(options.viewerScript);
    std::vector<std::string> inputs = options.solids;
    inputs.insert(inputs.end(), {options.map, options.target});
    if (options.restraints)
        inputs.push_back(*options.restraints);
    std::vector<std::string> outputs = models;
    for (const auto &output :
         {options.results, options.log, options.json, options.report, options.viewerScript})
        if (output)
            outputs.push_back(*output);
    CheckOutputs(outputs, inputs);
    std::error_code error;
    if (options.log && std::filesystem::is_fifo(*options.log, error))
        throw FileError(*options.log, "", "is a pipe; the log needs a file");
}

Delivery WriteFitOutputs(const FitRecord &record, const std::list<SolutionScore> &solutions,
                         const FitInput &input) {
    const FitOptions &options = record.options;
    const std::string count = std::to_string(solutions.size()) + " solutions";
    DeliveryWriter writer;
    if (options.results)
        writer.Write(*options.results, count, [&] { WriteResultsFile(*options.results, solutions); });
    if (options.json)
        writer.Write(*options.json, count + " in full precision", [&] {
            formats::ReplaceFile(*options.json, [&](std::ostream &out) { WriteFitJson(out, record); });
        });
    const std::vector<std::string> models = ModelFiles(options, input.targetFormat);
    for (std::size_t i = 0; i < std::min(models.size(), solutions.size()); ++i) {
        const SolutionScore &solution = *record.solutions[i].solution;
        writer.Write(models[i], "the model of rank " + std::to_string(i + 1), [&] {
            formats::WriteStructure(models[i], input.targetFormat, input.target,
                                    Transform(solution.rotation, solution.translation));
        });
    }
    DeliverReport(record, input, writer);
    return writer.Result();
}

} // namespace hosts
