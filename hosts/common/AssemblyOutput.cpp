#include "hosts/common/AssemblyOutput.h"

#include "hosts/common/Outputs.h"

#include "formats/files/ReplaceFile.h"

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
    std::vector<std::string> outputs, inputs = options.fixed;
    for (const auto &output : {options.assembly, options.json})
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
    if (options.json)
        writer.Write(*options.json, count + " in full precision", [&] {
            formats::ReplaceFile(*options.json, [&](std::ostream &out) { WriteAssemblyJson(out, record); });
        });
    return writer.Result();
}

} // namespace hosts
