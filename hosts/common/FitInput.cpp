#include "hosts/common/FitInput.h"

#include "hosts/common/Chains.h"
#include "hosts/common/Inputs.h"
#include "hosts/common/ParameterError.h"
#include "hosts/common/RestraintsCheck.h"

#include "Collect.h"
#include "Parameters.h"
#include "formats/files/FileError.h"

#include <algorithm>
#include <filesystem>

using namespace VARNO;
using formats::FileError;

namespace hosts {

namespace {

bool IsSameFile(const std::string &a, const std::string &b) {
    std::error_code error;
    return std::filesystem::equivalent(a, b, error);
}

/// Whether a polymer is to be a part of the solid.
class SolidChoice {
public:
    SolidChoice(const FitOptions &options, const Chain *target)
        : m_named(options.solidChains)
        , m_target(target) {}

    bool Takes(const Chain *chain) const {
        if (!m_named)
            return chain != m_target;
        return std::ranges::any_of(*m_named, [&](const std::string &name) { return IsNamed(*chain, name); });
    }

private:
    const std::optional<std::vector<std::string>> &m_named;
    const Chain *m_target;
};

SolidFile ChooseSolid(const std::string &file, const Clump *clump, const SolidChoice &choice) {
    SolidFile solid{file, {}, {}, false};
    for (Chain *chain : AllChains(clump)) {
        if (chain->IsPolymer())
            (choice.Takes(chain) ? solid.chains : solid.leftOut).push_back(chain);
        else
            solid.hasOthers = true;
    }
    if (solid.chains.empty())
        throw FileError(file, "",
                        "no polymer chain is left for the solid" +
                            (solid.leftOut.empty() ? "" : ", the file has " + ChainNames(solid.leftOut)));
    return solid;
}

/// A chain that is asked for has to be in one of the files.
void CheckNamedChains(const FitOptions &options, const std::vector<SolidFile> &solids) {
    for (const std::string &name : options.solidChains.value_or(std::vector<std::string>()))
        if (std::ranges::none_of(solids, [&](const SolidFile &solid) {
                return std::ranges::any_of(solid.chains,
                                           [&](const Chain *chain) { return IsNamed(*chain, name); });
            }))
            throw ParameterError("solid chains", "no solid file has a polymer chain '" + name + "'");
}

void CheckNoneTwice(const std::vector<std::string> &files) {
    for (auto file = files.begin(); file != files.end(); ++file)
        if (std::any_of(files.begin(), file, [&](const auto &other) { return IsSameFile(other, *file); }))
            throw FileError(*file, "", "is given twice as a solid");
}

} // namespace

std::vector<Compound *> FitInput::SolidResidues() const {
    std::vector<Compound *> residues;
    for (const SolidFile &solid : solids)
        for (Chain *chain : solid.chains)
            GetResidues(chain, residues, true);
    return residues;
}

FitInput ReadFitInput(const FitOptions &options, const WarningSink &warn) {
    FitInput input;
    if (options.restraints)
        input.restraints = LoadRestraints(*options.restraints);
    CheckNoneTwice(options.solids);
    formats::StructureReport report;
    const Clump *targetModel = LoadStructure(options.target, warn, &report);
    input.target = ChooseChain(options.target, targetModel, options.chain);
    input.targetFormat =
        report.format == "mmCIF" ? formats::StructureFormat::Mmcif : formats::StructureFormat::Pdb;
    const SolidChoice choice(options, input.target);
    for (const std::string &file : options.solids) {
        const Clump *model = IsSameFile(file, options.target) ? targetModel : LoadStructure(file, warn);
        input.solids.push_back(ChooseSolid(file, model, choice));
    }
    CheckNamedChains(options, input.solids);
    input.map = LoadMap(options.map, warn, &input.mapReport);
    return input;
}

fit::FitParameters ParametersOf(const FitOptions &options, const FitInput &input) {
    fit::FitParameters parameters;
    parameters.axisDepth = options.axis;
    parameters.angleStep = Radians(options.rotationStep);
    parameters.translationStep = options.translationStep;
    parameters.translationCount = options.translationSteps;
    parameters.keep = options.keep;
    parameters.logging = options.log.has_value();
    parameters.log = QString::fromStdString(options.log.value_or(""));
    parameters.restraints = input.restraints;
    parameters.inclusionDistance = float(options.inclusionDistance);
    parameters.target = input.target;
    parameters.map = input.map;
    parameters.solid = input.SolidResidues();
    return parameters;
}

} // namespace hosts
