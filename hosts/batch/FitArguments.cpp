#include "FitArguments.h"

#include "Config.h"

#include <QString>

#include <algorithm>
#include <filesystem>
#include <thread>

using namespace cli;
using hosts::FitOptions;

namespace batch {

namespace {

std::string ConfiguredText(const std::string &key) {
    return VARNO::Config::GetSetting("Morvanex", key).ToString();
}

/// The option's text, or the configured one.
QString TextOf(const Arguments &arguments, const std::string &option, const std::string &key) {
    return QString::fromStdString(arguments.Has(option) ? arguments.Text(option) : ConfiguredText(key));
}

std::optional<std::string> GivenText(const Arguments &arguments, const std::string &option) {
    return arguments.Has(option) ? std::optional(arguments.Text(option)) : std::nullopt;
}

/// The configured depth passes through the dialog's field, which holds it inside its range.
int AxisOf(const Arguments &arguments) {
    if (arguments.Has("--axis"))
        return arguments.Integer("--axis");
    return std::clamp(VARNO::Config::GetSetting("Morvanex", "Axis").ToInt(), 0, hosts::maxAxis);
}

int ThreadsOf(const Arguments &arguments) {
    if (arguments.Has("--threads"))
        return arguments.Integer("--threads");
    return std::clamp(int(std::thread::hardware_concurrency()), 1, hosts::maxThreads);
}

std::vector<std::string> SplitAtCommas(const std::string &text) {
    std::vector<std::string> parts(1);
    for (const char character : text) {
        if (character == ',')
            parts.emplace_back();
        else
            parts.back() += character;
    }
    return parts;
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
        return "\"" + key + "\" of the configuration, " + value + " as shipped";
    };
    return {
        {.name = "--map",
         .value = Value::Text,
         .valueName = "FILE",
         .help =
             "The density map, MRC2014 or CCP4 with an orthogonal cell; it may be packed by gzip or bzip2",
         .required = true,
         .heading = "Input"},
        {.name = "--target",
         .value = Value::Text,
         .valueName = "FILE",
         .help = "The structure that holds the chain to be fitted, PDB or mmCIF, coordinates in Å; it may be "
                 "packed by gzip",
         .required = true},
        {.name = "--chain",
         .value = Value::Text,
         .valueName = "ID",
         .help = "The chain of the target file to be fitted. A chain without an identifier is ' '",
         .defaultText = "the file's first polymer chain"},
        {.name = "--solid",
         .value = Value::Text,
         .valueName = "FILE",
         .help = "A structure that stays where it is and that the fitted chain must not penetrate; it may be "
                 "the target's own file",
         .defaultText = "none",
         .repeatable = true},
        {.name = "--solid-chains",
         .value = Value::Text,
         .valueName = "IDS",
         .help = "The chains of the solid files that are used, separated by commas",
         .defaultText = "all polymer chains, less the target chain where the file is the same"},
        {.name = "--restraints",
         .value = Value::Text,
         .valueName = "FILE",
         .help = "Distance restraints, one on each line: a residue of the target (ALA12) and its preferred "
                 "position x y z in Å. They do not enter the score; each pose's distances from them are "
                 "saved with it",
         .defaultText = "none"},

        {.name = "--axis",
         .value = Value::Integer,
         .valueName = "N",
         .help = "How finely rotation axes are spread over the half sphere: 0, 1, 2, 3, 4 give 6, 21, 81, "
                 "321, 1281 axes",
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
         .help = "Residues of the solid farther than this from the target's centre, in Å, are left out",
         .defaultText = shipped("Marginal", "60.0")},
        {.name = "--threads",
         .value = Value::Integer,
         .valueName = "N",
         .help = "How many threads score poses; the results do not depend on it. With --log there is only "
                 "one",
         .defaultText = "one for each core that the command may use"},

        {.name = "--results",
         .value = Value::Text,
         .valueName = "FILE",
         .help = "Write the solutions kept, the best last, in the format that the results dialog loads",
         .defaultText = "no file",
         .heading = "Output"},
        {.name = "--log",
         .value = Value::Text,
         .valueName = "FILE",
         .help = "Write every accepted pose while the search runs, which then scores pose by pose and takes "
                 "many times as long",
         .defaultText = "no file"},
        {.name = "--json",
         .value = Value::Text,
         .valueName = "FILE",
         .help = "Write the settings, the counts and every solution kept in full precision, the best first",
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
         .help = "Say nothing of what was read and show no progress; warnings and the table stay"},
        {.name = "--force", .help = "Run the fit however long it takes"},
    };
}

FitOptions ReadFitOptions(const Arguments &arguments) {
    if (arguments.Has("--solid-chains") && !arguments.Has("--solid"))
        throw UsageError("--solid-chains is given without --solid");
    FitOptions options;
    options.map = arguments.Text("--map");
    options.target = arguments.Text("--target");
    options.chain = GivenText(arguments, "--chain");
    options.solids = arguments.Texts("--solid");
    if (arguments.Has("--solid-chains"))
        options.solidChains = SplitAtCommas(arguments.Text("--solid-chains"));
    options.restraints = GivenText(arguments, "--restraints");

    options.axis = AxisOf(arguments);
    options.rotationStep = TextOf(arguments, "--rotation-step", "RotationStep").toDouble();
    options.translationStep = TextOf(arguments, "--translation-step", "TransStep").toDouble();
    options.translationSteps = TextOf(arguments, "--translation-steps", "TransNum").toInt();
    options.keep = TextOf(arguments, "--keep", "TopList").toInt();
    options.inclusionDistance = TextOf(arguments, "--inclusion-distance", "Marginal").toStdString();

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
