#include "PlaceArguments.h"

#include "CommonOptions.h"

using namespace cli;
using hosts::PlaceOptions;

namespace batch {

namespace {

double Resolution(const Arguments &arguments) {
    const double resolution = arguments.Number("--resolution");
    // Finer than atoms are apart, or coarser than any map of a molecule.
    if (!(resolution >= 0.5 && resolution <= 200))
        Refuse("--resolution", arguments.Text("--resolution"), "a number of Å from 0.5 to 200");
    return resolution;
}

} // namespace

std::vector<Option> PlaceOptionTable() {
    return {
        Headed("Input", MapOption()),
        {.name = "--model",
         .value = Value::File,
         .valueName = "FILE",
         .help =
             "The structure to be placed, PDB or mmCIF, coordinates in Å, plain or compressed by gzip. Where "
             "it stands does not matter",
         .required = true},
        {.name = "--resolution",
         .value = Value::Number,
         .valueName = "A",
         .help = "The map's resolution, in Å. 1.4 times too much or too little does no harm",
         .required = true},
        {.name = "--chain",
         .value = Value::Text,
         .valueName = "IDS",
         .help = "The chains to be placed, which move together, separated by commas. A chain without an "
                 "identifier is ' '",
         .defaultText = "all polymer chains"},
        {.name = "--min-plddt",
         .value = Value::Number,
         .valueName = "N",
         .help = "Residues of a predicted model whose confidence (its B factor) is lower are left out of the "
                 "search and moved along",
         .defaultText = "every residue takes part"},

        Headed("Search", ThreadsOption("search")),

        Headed(
            "Output",
            JsonOption("Write the verdict, every place in full precision, the best first, and the score of "
                       "each residue at the first one")),
        ResultsOption("the places"),
        ModelsOption("Write the model at the N best places, the chains with all their atoms, "
                     "in the model file's format"),
        ModelPrefixOption("--model", "place"),
        QuietOption("Print neither the summary of the input nor progress; warnings, the verdict "
                    "and the table stay"),
    };
}

PlaceOptions ReadPlaceOptions(const Arguments &arguments) {
    PlaceOptions options;
    options.map = arguments.Text("--map");
    options.model = arguments.Text("--model");
    options.resolution = Resolution(arguments);
    options.chains = arguments.List("--chain");
    if (arguments.Has("--min-plddt"))
        options.minPlddt = arguments.Number("--min-plddt");
    options.json = arguments.GivenText("--json");
    options.results = arguments.GivenText("--results");
    // More than the search keeps are never written.
    options.models = IntegerOf(arguments, "--models", 0, 150, 0);
    options.modelPrefix = ModelPrefixOf(arguments, "--model", "place");
    options.quiet = arguments.Has("--quiet");
    options.threads = ThreadsOf(arguments);
    return options;
}

} // namespace batch
