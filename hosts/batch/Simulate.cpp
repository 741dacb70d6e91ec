#include "Commands.h"

#include "base/Numbers.h"
#include "base/Words.h"

#include "cli/CommandLine.h"
#include "cli/Diagnostics.h"
#include "cli/Printable.h"
#include "formats/files/FileError.h"
#include "formats/structures/StructureFile.h"
#include "hosts/common/Bend.h"
#include "hosts/common/Chains.h"
#include "hosts/common/Inputs.h"
#include "hosts/common/Outputs.h"
#include "hosts/common/Simulation.h"

#include <filesystem>
#include <iostream>

using namespace cli;
using namespace hosts;
using namespace VARNO;

namespace batch {

namespace {

constexpr double maxBend = 100; ///< Å

std::optional<double> GivenNumber(const Arguments &arguments, const std::string &option) {
    return arguments.Has(option) ? std::optional(arguments.Number(option)) : std::nullopt;
}

SimulationSettings ReadSettings(const Arguments &arguments) {
    const SimulationSettings settings{.resolution = arguments.Number("--resolution"),
                                      .voxel = arguments.Number("--voxel"),
                                      .noise = arguments.Number("--noise"),
                                      .seed = std::uint64_t(arguments.Integer("--seed")),
                                      .bFactor = GivenNumber(arguments, "--b-factor"),
                                      .solvent = arguments.Number("--solvent"),
                                      .resolutionNoise = arguments.Number("--resolution-noise"),
                                      .treatment = {.sharpen = arguments.Number("--sharpen"),
                                                    .lowPass = GivenNumber(arguments, "--low-pass"),
                                                    .mask = GivenNumber(arguments, "--mask"),
                                                    .maskEdge = arguments.Number("--mask-edge"),
                                                    .margin = GivenNumber(arguments, "--margin"),
                                                    .invert = arguments.Has("--invert")}};
    if (const QString problem = RefuseSettings(settings); !problem.isEmpty())
        throw std::runtime_error(problem.toStdString());
    if (settings.treatment.maskEdge > 0 && !settings.treatment.mask)
        throw std::runtime_error("--mask-edge: there is no --mask that it could be the edge of");
    // The finest wave that a grid holds is two voxels long.
    if (settings.voxel > settings.resolution / 2)
        Warn(QString("voxels of %1 Å are too large to hold a resolution of %2 Å: at most half of it")
                 .arg(base::GeneralNumber(settings.voxel), base::GeneralNumber(settings.resolution))
                 .toStdString());
    // Atoms as sharp as those of a map of twice the voxel.
    if (settings.bFactor && *settings.bFactor < 16 * settings.voxel * settings.voxel)
        Warn(QString("voxels of %1 Å are too large for a B factor of %2 Å²: at most a quarter of its root")
                 .arg(base::GeneralNumber(settings.voxel), base::GeneralNumber(*settings.bFactor))
                 .toStdString());
    return settings;
}

/// The deformation that was asked for; none, where none was.
std::optional<Bend> ReadBend(const Arguments &arguments, const std::string &model,
                             const std::vector<Scatterer> &scatterers) {
    const double rmsd = arguments.Number("--bend");
    if (!(rmsd >= 0 && rmsd <= maxBend))
        throw std::runtime_error("--bend " + base::GeneralNumber(rmsd).toStdString() +
                                 ": must be a number from 0 to " +
                                 base::GeneralNumber(maxBend).toStdString() + " Å");
    if (rmsd == 0)
        return std::nullopt;
    std::vector<Vertex> positions;
    positions.reserve(scatterers.size());
    for (const Scatterer &atom : scatterers)
        positions.push_back(atom.position);
    try {
        return Bend(positions, rmsd, std::uint64_t(arguments.Integer("--seed")));
    } catch (const std::invalid_argument &error) {
        throw formats::FileError(model, "", error.what());
    }
}

std::vector<Scatterer> ScatterersOf(const std::string &file, const std::vector<Chain *> &chains) {
    std::size_t unknown = 0;
    std::vector<Scatterer> scatterers = CollectScatterers({chains.begin(), chains.end()}, unknown);
    if (scatterers.empty())
        throw formats::FileError(file, "chains " + ChainNames(chains), "there is no atom of a known element");
    if (unknown > 0)
        Warn(file + ": skips " + base::Counted(unknown, "atom") + " of unknown element");
    return scatterers;
}

/// What the map is, for its header; that has room for 80 characters of plain text.
std::string Title(const std::string &model, const SimulationSettings &settings) {
    QString title = QString("%1 A density of %2")
                        .arg(base::GeneralNumber(settings.resolution),
                             QString::fromStdString(std::filesystem::path(model).filename()));
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

void PrintMap(const Grid &map, const SimulationSettings &settings) {
    const auto &size = map.Dimensions();
    const auto &origin = map.Origin();
    std::cout << QString("map: %1 x %2 x %3 voxels of %4 Å, origin %5, %6, %7 Å\n")
                     .arg(size[0])
                     .arg(size[1])
                     .arg(size[2])
                     .arg(base::GeneralNumber(settings.voxel), base::GeneralNumber(double(origin[0])),
                          base::GeneralNumber(double(origin[1])), base::GeneralNumber(double(origin[2])))
                     .toStdString();
}

int Run(const Arguments &arguments) {
    const std::string model = arguments.Text("--model"), out = arguments.Text("--out");
    const std::string bentModel = arguments.Text("--bent-model");
    const SimulationSettings settings = ReadSettings(arguments);
    std::vector<std::string> outputs{out};
    if (!bentModel.empty())
        outputs.push_back(bentModel);
    CheckOutputs(outputs, {model});
    const Clump *clump = LoadStructure(model, Warn);
    const std::vector<Chain *> chains = ChooseChains(model, clump, arguments.List("--chains"));
    std::vector<Scatterer> scatterers = ScatterersOf(model, chains);
    const std::optional<Bend> bend = ReadBend(arguments, model, scatterers);
    if (bend)
        for (Scatterer &atom : scatterers)
            atom.position = (*bend)(atom.position);
    else if (!bentModel.empty())
        throw std::runtime_error("--bent-model: there is no --bend that makes one");
    const SimulationBox box = LayOutBox(scatterers, settings);
    if (const QString problem = RefuseBox(box, scatterers.size(), settings); !problem.isEmpty())
        throw formats::FileError(model, "", problem.toStdString());
    std::cout << "model: chains " << Printable(ChainNames(chains)) << " of " << Printable(model) << ", "
              << scatterers.size() << " atoms\n";
    const std::unique_ptr<Grid> map = SimulateMap(scatterers, box, settings);
    formats::WriteMap(out, *map, Title(model, settings));
    PrintMap(*map, settings);
    std::cout << "written: " << Printable(out) << '\n';
    if (!bentModel.empty()) {
        formats::WriteStructure(bentModel, formats::StructureFormatOf(bentModel),
                                {chains.begin(), chains.end()}, formats::Displacement(*bend));
        std::cout << "written: " << Printable(bentModel) << '\n';
    }
    return Succeeded;
}

std::vector<Option> Options() {
    return {
        {.name = "--model",
         .value = Value::File,
         .valueName = "FILE",
         .help = "The structure, PDB or mmCIF, plain or compressed by gzip",
         .required = true,
         .heading = "The molecule"},
        {.name = "--chains",
         .value = Value::Text,
         .valueName = "IDS",
         .help =
             "Polymer chains to use, identifiers separated by commas; ' ' is the chain without an identifier. "
             "Waters and ligands are never used",
         .defaultText = "all polymer chains"},
        {.name = "--bend",
         .value = Value::Number,
         .valueName = "A",
         .help =
             "Displace the atoms smoothly by this root mean square, in Å, at most 100: by random waves one "
             "to two times as long as the molecule, without their rigid-body motion",
         .defaultText = "0, the model as it is"},
        {.name = "--bent-model",
         .value = Value::File,
         .valueName = "FILE",
         .help = "Write the bent model, mmCIF where the name ends in .cif or .mmcif, else PDB",
         .defaultText = "no file"},

        {.name = "--resolution",
         .value = Value::Number,
         .valueName = "A",
         .help = "Resolution of the map, 0.1 to 1000 Å",
         .required = true,
         .heading = "The map"},
        {.name = "--voxel",
         .value = Value::Number,
         .valueName = "A",
         .help = "Spacing of the voxels along x, y and z, 0.001 to 1000 Å",
         .required = true},
        {.name = "--b-factor",
         .value = Value::Number,
         .valueName = "B",
         .help = "Temperature factor of every atom, 0.04 to 4,000,000 Å²: the Fourier transform falls like "
                 "exp(-B * k^2 / 4). Real maps have about 2 to 6 times the square of their resolution",
         .defaultText = "4 times the square of the resolution"},
        {.name = "--solvent",
         .value = Value::Number,
         .valueName = "K",
         .help = "Density of the solvent around, in units of the molecule's, 0 to 1: the transform is "
                 "multiplied by 1 - K * exp(-50 * k^2). Vitreous ice has about 0.65",
         .defaultText = "0, a vacuum"},
        {.name = "--noise",
         .value = Value::Number,
         .valueName = "S",
         .help =
             "Noise to add to every voxel: its standard deviation, in units of that of the map without noise; at "
             "most 1000",
         .defaultText = "0, no noise"},
        {.name = "--resolution-noise",
         .value = Value::Number,
         .valueName = "F",
         .help =
             "Noise to add to every voxel: F = 1 is what the resolution implies, a ratio of signal to noise "
             "of 1/3 in the waves as long as the resolution (an FSC of 0.143 between half maps), within the "
             "molecule's volume. Others are "
             "so many times stronger or weaker; at most 1000",
         .defaultText = "0, no noise"},
        {.name = "--seed",
         .value = Value::Integer,
         .valueName = "N",
         .help = "Seed of noise and bend, a whole number; the same seed gives the same ones",
         .defaultText = "0"},

        {.name = "--sharpen",
         .value = Value::Number,
         .valueName = "B",
         .help = "Multiply the waves by exp(B * k^2 / 4), B in Å²; a negative B blurs",
         .defaultText = "0",
         .heading = "What is then done to the map, in this order"},
        {.name = "--low-pass",
         .value = Value::Number,
         .valueName = "A",
         .help = "Leave out waves shorter than this, 0.1 to 1000 Å, with a soft edge of 10 % to both sides",
         .defaultText = "all waves stay"},
        {.name = "--mask",
         .value = Value::Number,
         .valueName = "A",
         .help = "Set what is farther than this from every atom to 0, 0.1 to 1000 Å; 3 is too tight",
         .defaultText = "no mask"},
        {.name = "--mask-edge",
         .value = Value::Number,
         .valueName = "A",
         .help = "Width over which the mask falls off, up to 1000 Å",
         .defaultText = "0, a hard mask"},
        {.name = "--margin",
         .value = Value::Number,
         .valueName = "A",
         .help = "Let the box end this far from the outermost atoms, up to 10,000 Å",
         .defaultText = "where the last atom's density ends"},
        {.name = "--invert", .help = "Make density negative"},

        {.name = "--out",
         .value = Value::File,
         .valueName = "FILE",
         .help = "The map to write, MRC2014",
         .required = true,
         .heading = "Output"},
    };
}

} // namespace

Command SimulateCommand() {
    return {
        .name = "simulate",
        .summary = "make a density map of a model",
        .description =
            "Computes the density of a structure at a resolution R: every atom becomes a Gaussian with its "
            "atomic number as weight and the standard deviation R / (pi * sqrt(2)), about 0.225 R, whose "
            "Fourier transform has fallen to 1/e at the wavenumber 1/R. Values are electrons per cubic Å. "
            "Along each axis a Gaussian is cut off at 5 standard deviations; the box extends beyond the "
            "outermost atoms by as much and begins at a multiple of the voxel size. --b-factor gives the "
            "atoms another width, --solvent takes a wider Gaussian off each.\n\n"
            "Noise is close to normally distributed (the sum of twelve uniform random numbers) and has no "
            "correlation between voxels.",
        .options = Options(),
        .example = "morvanex simulate --model in.pdb --resolution 8 --voxel 2 --out out.mrc",
        .run = Run,
    };
}

} // namespace batch
