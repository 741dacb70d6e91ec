#include "hosts/common/PlaceInput.h"

#include "base/Words.h"

#include "hosts/common/Chains.h"
#include "hosts/common/ParameterError.h"

#include "Atom.h"
#include "Collect.h"
#include "formats/files/FileError.h"
#include "formats/structures/AtomicNumber.h"
#include "placement/Contacts.h"
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

/// A fixed chain where it stands.
struct FixedChain {
    std::string name; ///< "chain A of b.pdb"
    std::vector<placement::Point> residues;
};

std::vector<FixedChain> FixedChains(const std::vector<SolidFile> &fixed) {
    std::vector<FixedChain> chains;
    for (const SolidFile &file : fixed)
        for (Chain *chain : file.chains) {
            chains.push_back({"chain " + ChainNames({chain}) + " of " + file.file, {}});
            std::vector<Compound *> residues;
            GetResidues(chain, residues, true);
            for (const Compound *residue : residues)
                if (const Vertex at = residue->GetPosition(); at.IsValid())
                    chains.back().residues.push_back({double(at[0]), double(at[1]), double(at[2])});
        }
    return chains;
}

/// Parts that cannot both stand where they do are a mistake that spoils what is placed beside them.
void WarnOfClashes(const std::vector<SolidFile> &fixed, const WarningSink &warn) {
    const std::vector<FixedChain> chains = FixedChains(fixed);
    for (auto a = chains.begin(); a != chains.end(); ++a)
        for (auto b = chains.begin(); b != a; ++b)
            if (placement::Exclude(a->residues, b->residues))
                warn("fixed " + b->name + " and " + a->name +
                     " clash: more than a tenth of the residues of one stand within 3 Å of the other");
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

/// Reads a model; also gives the clump that it stands in.
PlaceModel ReadModel(const std::string &file, const PlaceOptions &options, const WarningSink &warn,
                     InputSource &source, const Clump *&clump) {
    PlaceModel model;
    model.file = file;
    formats::StructureReport report;
    clump = LoadStructure(file, warn, &report, source);
    model.chains = ChooseChains(file, clump, options.chains);
    model.format = report.format == "mmCIF" ? formats::StructureFormat::Mmcif : formats::StructureFormat::Pdb;
    CollectModelAtoms(model, options.minPlddt);
    return model;
}

/// Reads the model, or the parts of an assembly; tells what of them is no part of what stays.
MovingPart ReadModels(const PlaceOptions &options, const WarningSink &warn, InputSource &source,
                      PlaceInput &input) {
    MovingPart moving{options.model, nullptr, {}};
    if (options.parts.empty()) {
        static_cast<PlaceModel &>(input) = ReadModel(options.model, options, warn, source, moving.clump);
        moving.chains = input.chains;
    }
    for (const PartOptions &part : options.parts) {
        const Clump *clump = nullptr;
        input.parts.push_back(ReadModel(part.file, options, warn, source, clump));
        const bool isFixedToo = std::ranges::find(options.fixed, part.file) != options.fixed.end();
        if (input.parts.size() == 1 || isFixedToo)
            moving = {part.file, clump, input.parts.back().chains};
    }
    return moving;
}

/// The atoms of the model, or of the largest part, whose power the map's resembles the most.
const std::vector<placement::ModelAtom> &TypicalAtoms(const PlaceInput &input) {
    if (input.parts.empty())
        return input.atoms;
    return std::ranges::max_element(input.parts, {}, [](const PlaceModel &part) { return part.atoms.size(); })
        ->atoms;
}

/// What only a map as the model has.
void RefuseMaps(const PlaceOptions &options, const InputSource &source) {
    if (options.movedMap)
        throw ParameterError("moved-map", "is for a map as the model");
    for (const PartOptions &part : options.parts)
        if (source.IsMap(part.file))
            throw formats::FileError(part.file, "", "is a map; copies and several models are of structures");
}

} // namespace

void CollectModelAtoms(PlaceModel &model, std::optional<double> minBFactor) {
    for (unsigned chain = 0; chain < model.chains.size(); ++chain) {
        std::vector<Compound *> residues;
        GetResidues(model.chains[chain], residues, true);
        for (Compound *residue : residues) {
            std::vector<Compound *> atoms;
            GetAtoms(residue, atoms, true);
            if (minBFactor && MeanBFactor(atoms) < *minBFactor) {
                ++model.lowConfidence;
                continue;
            }
            const std::size_t before = model.atoms.size();
            AppendAtoms(atoms, unsigned(model.residues.size()), chain, model.atoms);
            if (model.atoms.size() > before)
                model.residues.push_back({model.chains[chain]->GetName(), residue->GetLabel()});
        }
    }
    if (model.atoms.empty())
        throw formats::FileError(model.file, "chains " + ChainNames(model.chains),
                                 model.lowConfidence > 0 ? "no residue reaches the confidence asked for"
                                                         : "there is no atom that a map could show");
}

double ResolutionOf(const PlaceOptions &options, const PlaceInput &input) {
    return options.resolution ? *options.resolution
                              : placement::EstimateResolution(ViewOf(*input.map),
                                                              placement::MakePointModel(TypicalAtoms(input)),
                                                              unsigned(options.threads));
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
    RefuseMaps(options, source);
    PlaceInput input;
    if (options.symmetry)
        input.symmetry = ReadSymmetryRequest(*options.symmetry);
    const MovingPart moving = ReadModels(options, warn, source, input);
    input.fixed = ReadSolidFiles(options.fixed, options.fixedChains, moving,
                                 {"fixed chains", "fixed file", "fixed part"}, warn, source);
    input.map = LoadMap(options.map, warn, &input.mapReport, source);
    if (options.invert)
        std::ranges::transform(input.map->Values(), input.map->Values().begin(), std::negate());
    input.resolution = ResolutionOf(options, input);
    CollectNeighbours(input, warn);
    if (!options.parts.empty())
        WarnOfClashes(input.fixed, warn);
    return input;
}

} // namespace hosts
