#include "SimulateArguments.h"

using namespace cli;
using namespace hosts;

namespace batch {

namespace {

std::optional<double> GivenNumber(const Arguments &arguments, const std::string &option) {
    return arguments.Has(option) ? std::optional(arguments.Number(option)) : std::nullopt;
}

} // namespace

std::vector<Option> SimulateOptionTable() {
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

SimulationOptions ReadSimulateOptions(const Arguments &arguments, const WarningSink &warn) {
    SimulationOptions options;
    options.model = arguments.Text("--model");
    options.chains = arguments.List("--chains");
    options.settings = {.resolution = arguments.Number("--resolution"),
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
    options.bend = arguments.Number("--bend");
    options.bentModel = arguments.GivenText("--bent-model");
    options.out = arguments.GivenText("--out");
    CheckSimulationOptions(options, warn);
    return options;
}

} // namespace batch
