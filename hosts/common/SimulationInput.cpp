#include "hosts/common/SimulationInput.h"

#include "base/Numbers.h"
#include "base/Words.h"

#include "hosts/common/Chains.h"
#include "hosts/common/Outputs.h"

#include "formats/files/FileError.h"

#include <filesystem>

using namespace VARNO;

namespace hosts {

namespace {

std::vector<Scatterer> ScatterersOf(const std::string &file, const std::vector<Chain *> &chains,
                                    const WarningSink &warn) {
    std::size_t unknown = 0;
    std::vector<Scatterer> scatterers = CollectScatterers({chains.begin(), chains.end()}, unknown);
    if (scatterers.empty())
        throw formats::FileError(file, "chains " + ChainNames(chains), "there is no atom of a known element");
    if (unknown > 0)
        warn(file + ": skips " + base::Counted(unknown, "atom") + " of unknown element");
    return scatterers;
}

/// The deformation that was asked for; none, where none was.
std::optional<Bend> BendOf(const SimulationOptions &options, const std::vector<Scatterer> &scatterers) {
    if (options.bend == 0)
        return std::nullopt;
    std::vector<Vertex> positions;
    positions.reserve(scatterers.size());
    for (const Scatterer &atom : scatterers)
        positions.push_back(atom.position);
    try {
        return Bend(positions, options.bend, options.settings.seed);
    } catch (const std::invalid_argument &error) {
        throw formats::FileError(options.model, "", error.what());
    }
}

/// The finest wave that a grid holds is two voxels long.
void WarnOfVoxels(const SimulationSettings &settings, const WarningSink &warn) {
    if (settings.voxel > settings.resolution / 2)
        warn(QString("voxels of %1 Å are too large to hold a resolution of %2 Å: at most half of it")
                 .arg(base::GeneralNumber(settings.voxel), base::GeneralNumber(settings.resolution))
                 .toStdString());
    // Atoms as sharp as those of a map of twice the voxel.
    if (settings.bFactor && *settings.bFactor < 16 * settings.voxel * settings.voxel)
        warn(QString("voxels of %1 Å are too large for a B factor of %2 Å²: at most a quarter of its root")
                 .arg(base::GeneralNumber(settings.voxel), base::GeneralNumber(*settings.bFactor))
                 .toStdString());
}

} // namespace

void CheckSimulationOptions(const SimulationOptions &options, const WarningSink &warn) {
    if (const QString problem = RefuseSettings(options.settings); !problem.isEmpty())
        throw std::runtime_error(problem.toStdString());
    if (options.settings.treatment.maskEdge > 0 && !options.settings.treatment.mask)
        throw std::runtime_error("--mask-edge: there is no --mask that it could be the edge of");
    if (!(options.bend >= 0 && options.bend <= maxBend))
        throw std::runtime_error("--bend " + base::GeneralNumber(options.bend).toStdString() +
                                 ": must be a number from 0 to " +
                                 base::GeneralNumber(maxBend).toStdString() + " Å");
    if (options.bend == 0 && options.bentModel)
        throw std::runtime_error("--bent-model: there is no --bend that makes one");
    WarnOfVoxels(options.settings, warn);
}

void CheckSimulationOutputs(const SimulationOptions &options) {
    std::vector<std::string> outputs;
    for (const auto &output : {options.out, options.bentModel})
        if (output)
            outputs.push_back(*output);
    CheckOutputs(outputs, {options.model});
}

SimulationInput ReadSimulationInput(const SimulationOptions &options, const WarningSink &warn,
                                    InputSource &source) {
    SimulationInput input;
    const Clump *clump = LoadStructure(options.model, warn, nullptr, source);
    input.chains = ChooseChains(options.model, clump, options.chains);
    input.scatterers = ScatterersOf(options.model, input.chains, warn);
    input.bend = BendOf(options, input.scatterers);
    if (input.bend)
        for (Scatterer &atom : input.scatterers)
            atom.position = (*input.bend)(atom.position);
    input.box = LayOutBox(input.scatterers, options.settings);
    if (const QString problem = RefuseBox(input.box, input.scatterers.size(), options.settings);
        !problem.isEmpty())
        throw formats::FileError(options.model, "", problem.toStdString());
    return input;
}

std::string SimulationTitle(const SimulationOptions &options) {
    const SimulationSettings &settings = options.settings;
    QString title = QString("%1 A density of %2")
                        .arg(base::GeneralNumber(settings.resolution),
                             QString::fromStdString(std::filesystem::path(options.model).filename()));
    if (settings.noise > 0)
        title += QString(", noise %1 SD").arg(base::GeneralNumber(settings.noise));
    if (settings.resolutionNoise > 0)
        title +=
            QString(", noise of %1 A x %2")
                .arg(base::GeneralNumber(settings.resolution), base::GeneralNumber(settings.resolutionNoise));
    if (settings.noise > 0 || settings.resolutionNoise > 0)
        title += QString(", seed %1").arg(qint64(settings.seed));
    return title.toStdString();
}

void WriteBentModel(const std::string &file, const SimulationInput &input) {
    formats::WriteStructure(file, formats::StructureFormatOf(file),
                            {input.chains.begin(), input.chains.end()}, formats::Displacement(*input.bend));
}

} // namespace hosts
