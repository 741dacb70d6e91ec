#include "FitArguments.h"

#include "hosts/common/Settings.h"

#include <algorithm>
#include <filesystem>
#include <thread>

using namespace cli;
using namespace hosts;

namespace batch {

namespace {

/// The option's number, or the configured one.
int IntegerOf(const Arguments &arguments, const std::string &option, const std::string &key,
              const WarningSink &warn) {
    return arguments.Has(option) ? arguments.Integer(option) : IntegerSetting(key, warn);
}

double NumberOf(const Arguments &arguments, const std::string &option, const std::string &key,
                const WarningSink &warn) {
    return arguments.Has(option) ? arguments.Number(option) : NumberSetting(key, warn);
}

std::optional<std::string> GivenText(const Arguments &arguments, const std::string &option) {
    return arguments.Has(option) ? std::optional(arguments.Text(option)) : std::nullopt;
}

/// The configured depth passes through the dialog's field, which holds it inside its range.
int AxisOf(const Arguments &arguments, const WarningSink &warn) {
    const int axis = IntegerOf(arguments, "--axis", "Axis", warn);
    return arguments.Has("--axis") ? axis : std::clamp(axis, 0, maxAxis);
}

int ThreadsOf(const Arguments &arguments) {
    if (arguments.Has("--threads"))
        return arguments.Integer("--threads");
    return std::clamp(int(std::thread::hardware_concurrency()), 1, maxThreads);
}

std::string ModelPrefix(const Arguments &arguments) {
    if (arguments.Has("--model-prefix"))
        return arguments.Text("--model-prefix");
    std::filesystem::path name = std::filesystem::path(arguments.Text("--target")).filename();
    while (name.has_extension())
        name = name.stem();
    return name.string() + "-fit-";
}

} // namespace

std::vector<Option> FitOptionTable() {
    const auto shipped = [](const std::string &key, const std::string &value) {
        return "\"" + key + "\" of the settings file, " + value + " as shipped";
    };
    return {
        {.name = "--map",
         .value = Value::File,
         .valueName = "FILE",
         .help =
             "The density map, MRC2014 or CCP4 with an orthogonal cell, plain or compressed by gzip or bzip2",
         .required = true,
         .heading = "Input"},
        {.name = "--target",
         .value = Value::File,
         .valueName = "FILE",
         .help =
             "The structure that holds the chain to fit, PDB or mmCIF, coordinates in Å, plain or compressed "
             "by gzip",
         .required = true},
        {.name = "--chain",
         .value = Value::Text,
         .valueName = "ID",
         .help = "The chain of the target file to fit. A chain without an identifier is ' '",
         .defaultText = "the file's first polymer chain"},
        {.name = "--solid",
         .value = Value::File,
         .valueName = "FILE",
         .help = "A structure whose chains are fixed: poses that clash with them are rejected. It may be the "
                 "target's own file",
         .defaultText = "none",
         .repeatable = true},
        {.name = "--solid-chains",
         .value = Value::Text,
         .valueName = "IDS",
         .help = "The chains of the solid files to use, separated by commas",
         .defaultText = "all polymer chains except the target chain"},
        {.name = "--restraints",
         .value = Value::File,
         .valueName = "FILE",
         .help = "Distance restraints, one on each line: a residue of the target (ALA12) and its preferred "
                 "position x y z in Å. They do not change the score; each saved pose lists its distances "
                 "from them",
         .defaultText = "none"},

        {.name = "--axis",
         .value = Value::Integer,
         .valueName = "N",
         .help =
             "How densely rotation axes cover the half sphere: 0, 1, 2, 3, 4 give 6, 21, 81, 321, 1281 axes",
         .defaultText = shipped("Axis", "2"),
         .heading = "Search"},
        {.name = "--rotation-step",
         .value = Value::Number,
         .valueName = "DEG",
         .help = "Step of the rotation about each axis, in degrees",
         .defaultText = shipped("RotationStep", "10.0")},
        {.name = "--translation-step",
         .value = Value::Number,
         .valueName = "A",
         .help = "Step of the translation along x, y and z, in Å",
         .defaultText = shipped("TransStep", "5.0")},
        {.name = "--translation-steps",
         .value = Value::Integer,
         .valueName = "N",
         .help = "Number of translations along each of x, y and z, centred on the start; an even number "
                 "counts as the next odd one",
         .defaultText = shipped("TransNum", "5")},
        {.name = "--keep",
         .value = Value::Integer,
         .valueName = "N",
         .help = "Number of best solutions to keep",
         .defaultText = shipped("TopList", "100")},
        {.name = "--inclusion-distance",
         .value = Value::Number,
         .valueName = "A",
         .help =
             "Fixed residues farther than this from the target's centre, in Å, are ignored; inf uses all of them",
         .defaultText = shipped("Marginal", "60.0")},
        {.name = "--threads",
         .value = Value::Integer,
         .valueName = "N",
         .help = "Number of threads that score poses; the results do not depend on it. With --log there is "
                 "only one",
         .defaultText = "one for each core available to the command"},

        {.name = "--results",
         .value = Value::File,
         .valueName = "FILE",
         .help = "Write the kept solutions, the best last, in the format that the results dialog loads",
         .defaultText = "no file",
         .heading = "Output"},
        {.name = "--log",
         .value = Value::File,
         .valueName = "FILE",
         .help =
             "Write every accepted pose while the search runs. Such a search scores pose by pose and takes "
             "many times as long",
         .defaultText = "no file"},
        {.name = "--json",
         .value = Value::File,
         .valueName = "FILE",
         .help = "Write the settings, the counts and every kept solution in full precision, the best first",
         .defaultText = "no file"},
        {.name = "--models",
         .value = Value::Integer,
         .valueName = "N",
         .help = "Write the N best solutions as structures: the target chain with all its atoms, in the "
                 "target file's format",
         .defaultText = "0"},
        {.name = "--model-prefix",
         .value = Value::Text,
         .valueName = "PATH",
         .help = "What the models' file names begin with; the rank and .pdb or .cif follow",
         .defaultText = "the target file's name without folder and extensions, then -fit-, in the current "
                        "folder"},
        {.name = "--quiet",
         .help = "Print neither the summary of the input nor progress; warnings and the table stay"},
        {.name = "--force", .help = "Run the fit even if it takes more than a year"},
    };
}

FitOptions ReadFitOptions(const Arguments &arguments, const WarningSink &warn) {
    if (arguments.Has("--solid-chains") && !arguments.Has("--solid"))
        throw UsageError("--solid-chains is given without --solid");
    FitOptions options;
    options.map = arguments.Text("--map");
    options.target = arguments.Text("--target");
    options.chain = GivenText(arguments, "--chain");
    options.solids = arguments.Texts("--solid");
    options.solidChains = arguments.List("--solid-chains");
    options.restraints = GivenText(arguments, "--restraints");

    options.axis = AxisOf(arguments, warn);
    options.rotationStep = NumberOf(arguments, "--rotation-step", "RotationStep", warn);
    options.translationStep = NumberOf(arguments, "--translation-step", "TransStep", warn);
    options.translationSteps = IntegerOf(arguments, "--translation-steps", "TransNum", warn);
    options.keep = IntegerOf(arguments, "--keep", "TopList", warn);
    options.inclusionDistance = NumberOf(arguments, "--inclusion-distance", "Marginal", warn);

    options.results = GivenText(arguments, "--results");
    options.log = GivenText(arguments, "--log");
    options.json = GivenText(arguments, "--json");
    options.models = arguments.Integer("--models");
    options.modelPrefix = ModelPrefix(arguments);
    options.quiet = arguments.Has("--quiet");
    options.force = arguments.Has("--force");
    options.threads = ThreadsOf(arguments);
    return options;
}

} // namespace batch
