#include "Commands.h"

#include "base/Numbers.h"

#include "SimulateArguments.h"
#include "cli/Diagnostics.h"
#include "cli/Printable.h"
#include "hosts/common/Chains.h"

#include <iostream>

using namespace cli;
using namespace hosts;
using namespace VARNO;

namespace batch {

namespace {

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
    const SimulationOptions options = ReadSimulateOptions(arguments, Warn);
    CheckSimulationOutputs(options);
    const SimulationInput input = ReadSimulationInput(options, Warn);
    std::cout << "model: chains " << Printable(ChainNames(input.chains)) << " of " << Printable(options.model)
              << ", " << input.scatterers.size() << " atoms\n";
    const std::unique_ptr<Grid> map = SimulateMap(input.scatterers, input.box, options.settings);
    formats::WriteMap(*options.out, *map, SimulationTitle(options));
    PrintMap(*map, options.settings);
    std::cout << "written: " << Printable(*options.out) << '\n';
    if (options.bentModel) {
        WriteBentModel(*options.bentModel, input);
        std::cout << "written: " << Printable(*options.bentModel) << '\n';
    }
    return Succeeded;
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
        .options = SimulateOptionTable(),
        .example = "morvanex simulate --model in.pdb --resolution 8 --voxel 2 --out out.mrc",
        .run = Run,
    };
}

} // namespace batch
