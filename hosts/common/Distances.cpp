#include "hosts/common/Distances.h"

#include "hosts/common/Chains.h"
#include "hosts/common/ParameterError.h"

#include "Collect.h"
#include "Group.h"
#include "formats/files/NodeName.h"

using namespace VARNO;
using placement::Connection;
using placement::ConnectionEnd;

namespace hosts {

namespace {

/// The residues of that name in one file.
void Collect(const ResidueName &name, const std::string &file, const std::vector<Chain *> &chains,
             std::optional<std::size_t> part, std::vector<ConnectionEnd> &ends,
             std::vector<std::string> &files) {
    if (!name.part.empty() && name.part != formats::NodeName(file))
        return;
    for (Chain *chain : chains) {
        if (!IsNamed(*chain, name.chain))
            continue;
        std::vector<Compound *> residues;
        GetResidues(chain, residues, true);
        for (const Compound *node : residues) {
            const auto *residue = dynamic_cast<const Group *>(node);
            const Vertex at = node->GetPosition();
            if (!residue || residue->GetSeqId() != name.sequenceId || !at.IsValid())
                continue;
            ends.push_back({part, {double(at[0]), double(at[1]), double(at[2])}});
            files.push_back(file);
        }
    }
}

ConnectionEnd EndOf(const ResidueName &name, const PlaceInput &input) {
    std::vector<ConnectionEnd> ends;
    std::vector<std::string> files;
    for (std::size_t part = 0; part < input.parts.size(); ++part)
        Collect(name, input.parts[part].file, input.parts[part].chains, part, ends, files);
    for (const SolidFile &fixed : input.fixed)
        Collect(name, fixed.file, fixed.chains, std::nullopt, ends, files);
    if (ends.empty())
        throw ParameterError("max distance", "no model has a residue " + TextOf(name) + " with a position");
    if (ends.size() > 1)
        throw ParameterError("max distance", "the residue " + TextOf(name) + " is in " + files[0] +
                                                 " and in " + files[1] + "; " + formats::NodeName(files[0]) +
                                                 '/' + name.chain + ':' + name.sequenceId +
                                                 " names the one of the first");
    return ends.front();
}

} // namespace

std::string TextOf(const ResidueName &residue) {
    return (residue.part.empty() ? "" : residue.part + '/') + residue.chain + ':' + residue.sequenceId;
}

std::vector<Connection> ConnectionsOf(const std::vector<DistanceOptions> &distances,
                                      const PlaceInput &input) {
    std::vector<Connection> connections;
    for (const DistanceOptions &distance : distances)
        connections.push_back({EndOf(distance.a, input), EndOf(distance.b, input), distance.max});
    return connections;
}

} // namespace hosts
