#include "hosts/common/FitInput.h"

#include "hosts/common/Chains.h"
#include "hosts/common/RestraintsCheck.h"

#include "Collect.h"
#include "Parameters.h"

using namespace VARNO;

namespace hosts {

std::vector<Compound *> FitInput::SolidResidues() const {
    std::vector<Compound *> residues;
    for (const SolidFile &solid : solids)
        for (Chain *chain : solid.chains)
            GetResidues(chain, residues, true);
    return residues;
}

FitInput ReadFitInput(const FitOptions &options, const WarningSink &warn, InputSource &source) {
    FitInput input;
    if (options.restraints)
        input.restraints = LoadRestraints(*options.restraints);
    formats::StructureReport report;
    const Clump *targetModel = LoadStructure(options.target, warn, &report, source);
    input.target = ChooseChain(options.target, targetModel, options.chain);
    input.targetFormat =
        report.format == "mmCIF" ? formats::StructureFormat::Mmcif : formats::StructureFormat::Pdb;
    input.solids =
        ReadSolidFiles(options.solids, options.solidChains, {options.target, targetModel, {input.target}},
                       {"solid chains", "solid file", "solid"}, warn, source);
    input.map = LoadMap(options.map, warn, &input.mapReport, source);
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
