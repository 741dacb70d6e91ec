#include "PlaceArguments.h"

#include "base/Numbers.h"

#include "hosts/common/FitOptions.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <thread>

using namespace cli;
using hosts::PlaceOptions;

namespace batch {

namespace {

std::optional<std::string> GivenText(const Arguments &arguments, const std::string &option) {
    return arguments.Has(option) ? std::optional(arguments.Text(option)) : std::nullopt;
}

[[noreturn]] void Refuse(const std::string &option, double value, const std::string &expected) {
    throw std::runtime_error(option + ' ' + base::GeneralNumber(value).toStdString() + ": must be " +
                             expected);
}

double Resolution(const Arguments &arguments) {
    const double resolution = arguments.Number("--resolution");
    // Finer than atoms are apart, or coarser than any map of a molecule.
    if (!(resolution >= 0.5 && resolution <= 200))
        Refuse("--resolution", resolution, "a number of Å from 0.5 to 200");
    return resolution;
}

int CountFrom(const Arguments &arguments, const std::string &option, int least, int most, int otherwise) {
    if (!arguments.Has(option))
        return otherwise;
    const int number = arguments.Integer(option);
    if (number < least || number > most)
        Refuse(option, number,
               "a whole number from " + std::to_string(least) + " to " + std::to_string(most));
    return number;
}

std::string ModelPrefix(const Arguments &arguments) {
    if (arguments.Has("--model-prefix"))
        return arguments.Text("--model-prefix");
    std::filesystem::path name = std::filesystem::path(arguments.Text("--model")).filename();
    while (name.has_extension())
        name = name.stem();
    return name.string() + "-place-";
}

} // namespace

std::vector<Option> PlaceOptionTable() {
    return {
        {.name = "--map",
         .value = Value::File,
         .valueName = "FILE",
         .help =
             "The density map, MRC2014 or CCP4 with an orthogonal cell, plain or compressed by gzip or bzip2",
         .required = true,
         .heading = "Input"},
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

        {.name = "--threads",
         .value = Value::Integer,
         .valueName = "N",
         .help = "How many threads search; the results do not depend on it",
         .defaultText = "one for each core that the command may use",
         .heading = "Search"},

        {.name = "--json",
         .value = Value::File,
         .valueName = "FILE",
         .help = "Write the verdict, every place in full precision, the best first, and the score of each "
                 "residue at the first one",
         .defaultText = "no file",
         .heading = "Output"},
        {.name = "--results",
         .value = Value::File,
         .valueName = "FILE",
         .help = "Write the places, the best last, in the format that the results dialog loads",
         .defaultText = "no file"},
        {.name = "--models",
         .value = Value::Integer,
         .valueName = "N",
         .help = "Write the model at the N best places, the chains with all their atoms, in the model file's "
                 "format",
         .defaultText = "0"},
        {.name = "--model-prefix",
         .value = Value::Text,
         .valueName = "PATH",
         .help = "What the models' file names begin with; the rank and .pdb or .cif follow",
         .defaultText = "the model file's name without folder and extensions, then -place-, in the current "
                        "folder"},
        {.name = "--quiet",
         .help = "Say nothing of what was read and show no progress; warnings, the verdict and the table "
                 "stay"},
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
    options.json = GivenText(arguments, "--json");
    options.results = GivenText(arguments, "--results");
    // More than the search keeps are never written.
    options.models = CountFrom(arguments, "--models", 0, 150, 0);
    options.modelPrefix = ModelPrefix(arguments);
    options.quiet = arguments.Has("--quiet");
    const int cores = std::clamp(int(std::thread::hardware_concurrency()), 1, hosts::maxThreads);
    options.threads = CountFrom(arguments, "--threads", 1, hosts::maxThreads, cores);
    return options;
}

} // namespace batch
