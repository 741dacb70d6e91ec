#include "hosts/common/PlaceInput.h"

#include "base/Words.h"

#include "hosts/common/Chains.h"

#include "Atom.h"
#include "Collect.h"
#include "formats/files/FileError.h"
#include "formats/structures/AtomicNumber.h"
#include "placement/Resolution.h"

#include <algorithm>
#include <array>
#include <functional>
#include <set>

using namespace VARNO;

namespace hosts {

namespace {

/// Names of an amino acid's backbone, and of a nucleotide's phosphate and sugar.
bool IsInBackbone(const std::string &name) {
    static const std::set<std::string> names = {"N",   "CA",  "C",   "O",   "OXT", "P",   "OP1",
                                                "OP2", "OP3", "O1P", "O2P", "O5'", "C5'", "C4'",
                                                "O4'", "C3'", "O3'", "C2'", "O2'", "C1'"};
    return names.contains(name);
}

double MeanBFactor(const std::vector<Compound *> &atoms) {
    double sum = 0;
    for (const Compound *node : atoms)
        if (const auto *atom = dynamic_cast<const Atom *>(node))
            sum += double(atom->GetBFactor());
    return atoms.empty() ? 0 : sum / double(atoms.size());
}

/// Appends a residue's atoms without hydrogens and those of unknown elements.
void AppendAtoms(const std::vector<Compound *> &atoms, unsigned residue, unsigned chain,
                 std::vector<placement::ModelAtom> &to) {
    for (const Compound *atom : atoms) {
        const int electrons = formats::AtomicNumber(atom->GetLabel());
        const Vertex at = atom->GetPosition();
        if (electrons > 1)
            to.push_back({{double(at[0]), double(at[1]), double(at[2])},
                          double(electrons),
                          residue,
                          chain,
                          IsInBackbone(atom->GetName())});
    }
}

bool LiesIn(const Grid &map, const placement::Point &position) {
    const std::array<double, 3> at{position.x, position.y, position.z};
    for (unsigned axis = 0; axis < 3; ++axis) {
        const double voxel = (at[axis] - double(map.Origin()[axis])) / double(map.Spacing()[axis]);
        if (!(voxel >= 0 && voxel <= double(map.Dimensions()[axis] - 1)))
            return false;
    }
    return true;
}

/// Residues of a fixed file.
struct FixedResidues {
    std::size_t all = 0, outside = 0; ///< of the map
};

FixedResidues CollectNeighbours(const SolidFile &fixed, PlaceInput &input) {
    FixedResidues number;
    for (Chain *chain : fixed.chains) {
        std::vector<Compound *> residues;
        GetResidues(chain, residues, true);
        for (Compound *residue : residues) {
            std::vector<Compound *> atoms;
            GetAtoms(residue, atoms, true);
            const std::size_t before = input.neighbours.size();
            const unsigned last = before > 0 ? input.neighbours.back().residue : 0;
            AppendAtoms(atoms, last + 1, 0, input.neighbours);
            if (input.neighbours.size() == before)
                continue;
            ++number.all;
            number.outside += LiesIn(*input.map, input.neighbours[before].position) ? 0 : 1;
        }
    }
    return number;
}

void CollectNeighbours(PlaceInput &input, const WarningSink &warn) {
    for (const SolidFile &fixed : input.fixed) {
        const auto [all, outside] = CollectNeighbours(fixed, input);
        // Parts in another frame than the map's are a common mistake.
        if (outside > 0)
            warn(fixed.file + ": " + base::Counted(outside, "fixed residue") + " of " + std::to_string(all) +
                 " outside of the map");
    }
}

} // namespace

void CollectModelAtoms(PlaceInput &input, std::optional<double> minBFactor) {
    for (unsigned chain = 0; chain < input.chains.size(); ++chain) {
        std::vector<Compound *> residues;
        GetResidues(input.chains[chain], residues, true);
        for (Compound *residue : residues) {
            std::vector<Compound *> atoms;
            GetAtoms(residue, atoms, true);
            if (minBFactor && MeanBFactor(atoms) < *minBFactor) {
                ++input.lowConfidence;
                continue;
            }
            const std::size_t before = input.atoms.size();
            AppendAtoms(atoms, unsigned(input.residues.size()), chain, input.atoms);
            if (input.atoms.size() > before)
                input.residues.push_back({input.chains[chain]->GetName(), residue->GetLabel()});
        }
    }
}

placement::VolumeView ViewOf(const Grid &map) {
    const auto &size = map.Dimensions();
    const auto &voxel = map.Spacing();
    const auto &origin = map.Origin();
    return {{size[0], size[1], size[2]},
            {double(voxel[0]), double(voxel[1]), double(voxel[2])},
            {double(origin[0]), double(origin[1]), double(origin[2])},
            map.Values()};
}

PlaceInput ReadPlaceInput(const PlaceOptions &options, const WarningSink &warn, InputSource &source) {
    PlaceInput input;
    formats::StructureReport report;
    const Clump *clump = LoadStructure(options.model, warn, &report, source);
    input.chains = ChooseChains(options.model, clump, options.chains);
    input.format = report.format == "mmCIF" ? formats::StructureFormat::Mmcif : formats::StructureFormat::Pdb;
    CollectModelAtoms(input, options.minPlddt);
    if (input.atoms.empty())
        throw formats::FileError(options.model, "chains " + ChainNames(input.chains),
                                 input.lowConfidence > 0 ? "no residue reaches the confidence asked for"
                                                         : "there is no atom that a map could show");
    input.fixed = ReadSolidFiles(options.fixed, options.fixedChains, {options.model, clump, input.chains},
                                 {"fixed chains", "fixed file", "fixed part"}, warn, source);
    input.map = LoadMap(options.map, warn, &input.mapReport, source);
    if (options.invert)
        std::ranges::transform(input.map->Values(), input.map->Values().begin(), std::negate());
    input.resolution =
        options.resolution
            ? *options.resolution
            : placement::EstimateResolution(ViewOf(*input.map), placement::MakePointModel(input.atoms),
                                            unsigned(options.threads));
    CollectNeighbours(input, warn);
    return input;
}

} // namespace hosts
