#include "Commands.h"

#include "base/Numbers.h"
#include "base/Words.h"

#include "cli/CommandLine.h"
#include "cli/Diagnostics.h"
#include "cli/Printable.h"
#include "formats/files/FileError.h"
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

SimulationSettings ReadSettings(const Arguments &arguments) {
    const SimulationSettings settings{arguments.Number("--resolution"), arguments.Number("--voxel"),
                                      arguments.Number("--noise"),
                                      std::uint64_t(arguments.Integer("--seed"))};
    if (const QString problem = RefuseSettings(settings); !problem.isEmpty())
        throw std::runtime_error(problem.toStdString());
    // The finest wave that a grid holds is two voxels long.
    if (settings.voxel > settings.resolution / 2)
        Warn(QString("voxels of %1 Å are too large to hold a resolution of %2 Å: at most half of it")
                 .arg(base::GeneralNumber(settings.voxel), base::GeneralNumber(settings.resolution))
                 .toStdString());
    return settings;
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
        title += QString(", noise %1 SD, seed %2")
                     .arg(base::GeneralNumber(settings.noise))
                     .arg(qint64(settings.seed));
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
    const SimulationSettings settings = ReadSettings(arguments);
    CheckOutputs({out}, {model});
    const Clump *clump = LoadStructure(model, Warn);
    const std::vector<Chain *> chains = ChooseChains(model, clump, arguments.List("--chains"));
    const std::vector<Scatterer> scatterers = ScatterersOf(model, chains);
    const SimulationBox box = LayOutBox(scatterers, settings);
    if (const QString problem = RefuseBox(box, scatterers.size(), settings); !problem.isEmpty())
        throw formats::FileError(model, "", problem.toStdString());
    std::cout << "model: chains " << Printable(ChainNames(chains)) << " of " << Printable(model) << ", "
              << scatterers.size() << " atoms\n";
    const std::unique_ptr<Grid> map = SimulateMap(scatterers, box, settings);
    formats::WriteMap(out, *map, Title(model, settings));
    PrintMap(*map, settings);
    std::cout << "written: " << Printable(out) << '\n';
    return Succeeded;
}

std::vector<Option> Options() {
    return {
        {"--model", Value::File, "FILE", "The structure, PDB or mmCIF, plain or compressed by gzip", "",
         true},
        {"--chains", Value::Text, "IDS",
         "Polymer chains to use, identifiers separated by commas; ' ' is the chain without an identifier. "
         "Waters and ligands are never used",
         "all polymer chains"},
        {"--resolution", Value::Number, "A", "Resolution of the map, 0.1 to 1000 Å", "", true},
        {"--voxel", Value::Number, "A", "Spacing of the voxels along x, y and z, 0.001 to 1000 Å", "", true},
        {"--noise", Value::Number, "S",
         "Noise to add to every voxel: its standard deviation, in units of that of the map without noise; at "
         "most 1000",
         "0, no noise"},
        {"--seed", Value::Integer, "N",
         "Seed of the noise, a whole number; the same seed gives the same noise", "0"},
        {"--out", Value::File, "FILE", "The map to write, MRC2014", "", true},
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
            "outermost atoms by as much and begins at a multiple of the voxel size.\n\n"
            "Noise is close to normally distributed (the sum of twelve uniform random numbers) and has no "
            "correlation between voxels.",
        .options = Options(),
        .example = "morvanex simulate --model in.pdb --resolution 8 --voxel 2 --out out.mrc",
        .run = Run,
    };
}

} // namespace batch
