#include "FitArguments.h"

#include "CommonOptions.h"
#include "hosts/common/Settings.h"

#include <algorithm>

using namespace cli;
using namespace hosts;

namespace batch {

namespace {

/// The option's number, or the configured one.
int IntegerOrSetting(const Arguments &arguments, const std::string &option, const std::string &key,
                     const WarningSink &warn) {
    return arguments.Has(option) ? arguments.Integer(option) : IntegerSetting(key, warn);
}

double NumberOrSetting(const Arguments &arguments, const std::string &option, const std::string &key,
                       const WarningSink &warn) {
    return arguments.Has(option) ? arguments.Number(option) : NumberSetting(key, warn);
}

/// The configured depth passes through the dialog's field, which holds it inside its range.
int AxisOf(const Arguments &arguments, const WarningSink &warn) {
    const int axis = IntegerOrSetting(arguments, "--axis", "Axis", warn);
    return arguments.Has("--axis") ? axis : std::clamp(axis, 0, maxAxis);
}

} // namespace

std::vector<Option> FitOptionTable() {
    const auto shipped = [](const std::string &key, const std::string &value) {
        return "\"" + key + "\" of the settings file, " + value + " as shipped";
    };
    return {
        Headed("Input", MapOption()),
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
        ThreadsOption("score poses", "With --log there is only one"),

        Headed("Output", ResultsOption("the kept solutions")),
        {.name = "--log",
         .value = Value::File,
         .valueName = "FILE",
         .help =
             "Write every accepted pose while the search runs. Such a search scores pose by pose and takes "
             "many times as long",
         .defaultText = "no file"},
        JsonOption(
            "Write the settings, the counts and every kept solution in full precision, the best first"),
        ReportOption(),
        ViewerScriptOption(),
        ModelsOption("Write the N best solutions as structures: the target chain with all its atoms, "
                     "in the target file's format"),
        ModelPrefixOption("--target", "fit"),
        QuietOption("Print neither the summary of the input nor progress; warnings and the table stay"),
        {.name = "--force", .help = "Run the fit even if it takes more than a year"},
    };
}

FitOptions ReadFitOptions(const Arguments &arguments, const WarningSink &warn) {
    if (arguments.Has("--solid-chains") && !arguments.Has("--solid"))
        throw UsageError("--solid-chains is given without --solid");
    FitOptions options;
    options.map = arguments.Text("--map");
    options.target = arguments.Text("--target");
    options.chain = arguments.GivenText("--chain");
    options.solids = arguments.Texts("--solid");
    options.solidChains = arguments.List("--solid-chains");
    options.restraints = arguments.GivenText("--restraints");

    options.axis = AxisOf(arguments, warn);
    options.rotationStep = NumberOrSetting(arguments, "--rotation-step", "RotationStep", warn);
    options.translationStep = NumberOrSetting(arguments, "--translation-step", "TransStep", warn);
    options.translationSteps = IntegerOrSetting(arguments, "--translation-steps", "TransNum", warn);
    options.keep = IntegerOrSetting(arguments, "--keep", "TopList", warn);
    options.inclusionDistance = NumberOrSetting(arguments, "--inclusion-distance", "Marginal", warn);

    options.results = arguments.GivenText("--results");
    options.log = arguments.GivenText("--log");
    options.json = arguments.GivenText("--json");
    options.report = arguments.GivenText("--report");
    options.viewerScript = arguments.GivenText("--viewer-script");
    options.models = arguments.Integer("--models");
    options.modelPrefix = ModelPrefixOf(arguments, "--target", "fit");
    options.quiet = arguments.Has("--quiet");
    options.force = arguments.Has("--force");
    options.threads = ThreadsOf(arguments);
    options.command = CommandLineOf("fit", FitOptionTable(), arguments);
    return options;
}

} // namespace batch
