#include "hosts/common/AssemblyOutput.h"

#include "hosts/common/Outputs.h"
#include "hosts/common/ReportOutput.h"

#include "formats/files/ReplaceFile.h"
#include "placement/Explained.h"

#include <algorithm>

using namespace placement;

namespace hosts {

namespace {

VARNO::Transform MotionOf(const PlacedCopy &copy) {
    const UnitQuaternion q = QuaternionOf(copy.pose.rotation);
    VARNO::Quaternion rotation;
    rotation.Set(q.w, q.x, q.y, q.z);
    return {rotation, VARNO::Vertex(float(copy.translation.x), float(copy.translation.y),
                                    float(copy.translation.z), false)};
}

/// The map less what the copies and the fixed parts explain.
void WriteRest(const std::string &file, const AssemblyRecord &record, const PlaceInput &input) {
    std::vector<Scatterer> atoms = ScatterersOf(input.neighbours);
    for (const PlacedCopy &copy : record.result.copies) {
        const std::vector<Scatterer> own = ScatterersOf(input.parts[copy.part].atoms, InPlace(copy).motion);
        atoms.insert(atoms.end(), own.begin(), own.end());
    }
    const VARNO::Grid &map = *input.map;
    const Volume rest = Unexplained(ViewOf(map), atoms, record.resolution, unsigned(record.options.threads));
    VARNO::Grid grid(map.GetName(), map.Dimensions(), map.Origin(), map.Spacing(), map.Angles());
    std::ranges::copy(rest.values, grid.Values().begin());
    formats::WriteMap(file, grid, "unexplained density");
}

void WriteStructureOf(const std::string &file, const AssemblyRecord &record, const PlaceInput &input) {
    std::vector<formats::PlacedChain> chains;
    for (std::size_t number = 0; number < record.result.copies.size(); ++number) {
        const PlacedCopy &copy = record.result.copies[number];
        const std::vector<VARNO::Chain *> &own = input.parts[copy.part].chains;
        for (std::size_t i = 0; i < own.size(); ++i)
            chains.push_back({own[i], MotionOf(copy), record.chainNames[number][i]});
    }
    formats::WriteAssembly(file, chains);
}

} // namespace

void CheckAssemblyOutputs(const PlaceOptions &options) {
    CheckViewerScript(options.viewerScript);
    std::vector<std::string> outputs, inputs = options.fixed;
    for (const auto &output :
         {options.assembly, options.rest, options.json, options.report, options.viewerScript})
        if (output)
            outputs.push_back(*output);
    inputs.push_back(options.map);
    for (const PartOptions &part : options.parts)
        inputs.push_back(part.file);
    CheckOutputs(outputs, inputs);
}

Delivery WriteAssemblyOutputs(const AssemblyRecord &record, const PlaceInput &input) {
    const PlaceOptions &options = record.options;
    const std::string count = CopiesText(record.result.copies.size());
    DeliveryWriter writer;
    if (options.assembly && !record.result.copies.empty())
        writer.Write(*options.assembly, count, [&] { WriteStructureOf(*options.assembly, record, input); });
    if (options.rest)
        writer.Write(*options.rest, "the density left unexplained",
                     [&] { WriteRest(*options.rest, record, input); });
    if (options.json)
        writer.Write(*options.json, count + " in full precision", [&] {
            formats::ReplaceFile(*options.json, [&](std::ostream &out) { WriteAssemblyJson(out, record); });
        });
    DeliverReport(record, input, writer);
    return writer.Result();
}

} // namespace hosts
