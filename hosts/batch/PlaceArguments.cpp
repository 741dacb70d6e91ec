#include "PlaceArguments.h"

#include "CommonOptions.h"

#include "base/Numbers.h"
#include "hosts/common/PlaceChecks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <sstream>

using namespace cli;
using hosts::DistanceOptions;
using hosts::PartOptions;
using hosts::Placed;
using hosts::PlaceOptions;
using hosts::PlaceScope;
using hosts::ResidueName;
using hosts::SymmetryOptions;

namespace batch {

namespace {

std::optional<double> Resolution(const Arguments &arguments) {
    if (!arguments.Has("--resolution"))
        return std::nullopt;
    const double resolution = arguments.Number("--resolution");
    // Finer than atoms are apart, or coarser than any map of a molecule.
    if (!(resolution >= 0.5 && resolution <= 200))
        Refuse("--resolution", arguments.Text("--resolution"), "a number of Å from 0.5 to 200");
    return resolution;
}

PlaceScope Scope(const Arguments &arguments) {
    if (arguments.Has("--refine"))
        return PlaceScope::Refine;
    return arguments.Has("--near") ? PlaceScope::Near : PlaceScope::WholeMap;
}

std::optional<placement::Sphere> Region(const Arguments &arguments) {
    if (!arguments.Has("--region"))
        return std::nullopt;
    std::vector<double> numbers;
    const std::vector<std::string> texts = arguments.List("--region").value();
    for (const std::string &text : texts)
        if (const auto number = base::ReadNumber(text); number && std::isfinite(*number))
            numbers.push_back(*number);
    if (texts.size() != 4 || numbers.size() != 4 || !(numbers[3] > 0))
        Refuse("--region", arguments.Text("--region"), "X,Y,Z,R, four numbers of Å with R above 0");
    return placement::Sphere{{numbers[0], numbers[1], numbers[2]}, numbers[3]};
}

std::optional<placement::Point> PointIn(const Arguments &arguments, const std::string &option,
                                        const std::string &what) {
    if (!arguments.Has(option))
        return std::nullopt;
    std::vector<double> numbers;
    const std::vector<std::string> texts = arguments.List(option).value();
    for (const std::string &text : texts)
        if (const auto number = base::ReadNumber(text); number && std::isfinite(*number))
            numbers.push_back(*number);
    if (texts.size() != 3 || numbers.size() != 3)
        Refuse(option, arguments.Text(option), "X,Y,Z, " + what);
    return placement::Point{numbers[0], numbers[1], numbers[2]};
}

std::optional<SymmetryOptions> SymmetryIn(const Arguments &arguments) {
    if (!arguments.Has("--symmetry") && !arguments.Has("--symmetry-from"))
        return std::nullopt;
    SymmetryOptions options;
    options.file = arguments.GivenText("--symmetry-from");
    if (arguments.Has("--symmetry"))
        options.request.symmetry = hosts::ReadAskedSymmetry(arguments.Text("--symmetry"));
    options.request.axis = PointIn(arguments, "--symmetry-axis", "a direction");
    options.request.centre = PointIn(arguments, "--symmetry-centre", "a point in Å");
    if (options.request.axis && !(Length(*options.request.axis) > 0))
        Refuse("--symmetry-axis", arguments.Text("--symmetry-axis"), "X,Y,Z, a direction");
    return options;
}

/// An option that is nothing without another one.
void CheckTogether(const Arguments &arguments, const std::string &option, const std::string &other) {
    if (arguments.Has(option) && !arguments.Has(other))
        throw UsageError(option + " is given without " + other);
}

/// "auto", or a number of copies. `text` stands in the value of the option.
std::optional<std::size_t> CopiesOf(const std::string &option, const std::string &value,
                                    const std::string &text) {
    constexpr int maxCopies = 1000;
    if (text == "auto")
        return std::nullopt;
    const std::optional<int> number = base::ReadInteger(text);
    if (!number || *number < 1 || *number > maxCopies)
        Refuse(option, value,
               "a whole number of copies from 1 to " + std::to_string(maxCopies) + ", or auto");
    return std::size_t(*number);
}

/// FILE, FILE=N or FILE=auto. A file may have such a name itself.
PartOptions Part(const std::string &value, const std::optional<std::size_t> &copies) {
    const std::size_t equals = value.rfind('=');
    if (equals == std::string::npos || std::filesystem::exists(value))
        return {value, copies};
    return {value.substr(0, equals), CopiesOf("--model", value, value.substr(equals + 1))};
}

/// "A:120" or "FILE/A:120".
ResidueName Residue(const std::string &text, const std::string &value) {
    const std::size_t slash = text.rfind('/'), first = slash == std::string::npos ? 0 : slash + 1;
    const std::size_t colon = text.rfind(':');
    if (colon == std::string::npos || colon < first || colon + 1 == text.size())
        Refuse("--max-distance", value, "A:N B:M D, two residues as chain and number, and Å");
    return {text.substr(0, first > 0 ? slash : 0), text.substr(first, colon - first), text.substr(colon + 1)};
}

std::vector<DistanceOptions> Distances(const Arguments &arguments) {
    std::vector<DistanceOptions> distances;
    for (const std::string &value : arguments.Texts("--max-distance")) {
        std::istringstream words(value);
        std::string a, b, max, more;
        words >> a >> b >> max >> more;
        const std::optional<double> number = base::ReadNumber(max);
        if (!number || !(*number > 0) || !std::isfinite(*number) || !more.empty())
            Refuse("--max-distance", value, "A:N B:M D, two residues as chain and number, and Å above 0");
        distances.push_back({Residue(a, value), Residue(b, value), *number});
    }
    return distances;
}

hosts::GivenOptions GivenOf(const Arguments &arguments) {
    return {[&arguments](const std::string &option) { return arguments.Has(OptionOf(option)); }, OptionOf};
}

/// The parts of an assembly, where one is asked for.
std::vector<PartOptions> Parts(const Arguments &arguments) {
    const std::string text = arguments.Text("--copies");
    const std::optional<std::size_t> copies =
        arguments.Has("--copies") ? CopiesOf("--copies", text, text) : std::optional<std::size_t>(1);
    std::vector<PartOptions> parts;
    for (const std::string &value : arguments.Texts("--model"))
        parts.push_back(Part(value, copies));
    const bool isCounted = parts.front().file != arguments.Texts("--model").front();
    const auto isGiven = [&](const char *option) { return arguments.Has(option); };
    if (parts.size() == 1 && !isCounted &&
        std::ranges::none_of(std::array{"--copies", "--assembly", "--rest", "--max-distance"}, isGiven)) {
        CheckCombination(GivenOf(arguments), Placed::OneModel);
        return {};
    }
    const bool isSymmetric = isGiven("--symmetry") || isGiven("--symmetry-from");
    if (isSymmetric && parts.size() == 1 && !isCounted && !isGiven("--copies") &&
        !isGiven("--max-distance")) {
        CheckCombination(GivenOf(arguments), Placed::SymmetricCopies);
        return {{parts.front().file, std::nullopt}};
    }
    CheckCombination(GivenOf(arguments), Placed::Assembly);
    CheckParts(parts);
    return parts;
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
             "it stands does not matter. Several models are placed together, without clashes; FILE=N places "
             "up to N copies of one, FILE=auto as many as are found. A density map is laid on the first "
             "one, in either hand",
         .required = true,
         .repeatable = true},
        {.name = "--copies",
         .value = Value::Text,
         .valueName = "N",
         .help =
             "Place up to N copies of each model that does not say so itself, or \"auto\", as many as are "
             "found",
         .defaultText = "1 of each of several models; of one model every place is listed"},
        {.name = "--resolution",
         .value = Value::Number,
         .valueName = "A",
         .help = "The map's resolution, in Å. 1.4 times too much or too little does no harm",
         .defaultText = "estimated from the map's spectrum"},
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
        {.name = "--fixed",
         .value = Value::File,
         .valueName = "FILE",
         .help = "A structure that is already in place: its density is taken out of the map, and places "
                 "on it are not rewarded; touching it is allowed. It may be the model's own file",
         .defaultText = "none",
         .repeatable = true},
        {.name = "--fixed-chains",
         .value = Value::Text,
         .valueName = "IDS",
         .help = "The chains of the fixed files to use, separated by commas",
         .defaultText = "all polymer chains except those to be placed"},

        {.name = "--max-distance",
         .value = Value::Text,
         .valueName = "A:N B:M D",
         .help =
             "Residues N of chain A and M of chain B are known to be at most D Å apart, from CA to CA, in some "
             "copies: a cross-link or a linker. Of an assembly's sure places those that agree are taken; what "
             "does not hold is listed. NAME/A:N where several files have a chain A",
         .repeatable = true,
         .words = 3},
        {.name = "--invert",
         .help = "The map's density is dark, as in a negative: its values change their sign"},

        {.name = "--near",
         .help = "Search round the model's present place only: its centre within its own radius, in every "
                 "turn",
         .heading = "Search"},
        {.name = "--refine",
         .help = "Do not search, but move the model to the best place next to its present one, up to about "
                 "10 Å and 30 degrees away"},
        {.name = "--region",
         .value = Value::Text,
         .valueName = "X,Y,Z,R",
         .help = "Search with the model's centre within R Å of the point X, Y, Z only",
         .defaultText = "the whole map"},
        {.name = "--hands",
         .help = "Search the mirrored map as well, and tell which hand is right. Where that is the mirrored "
                 "one, the places are those in the mirrored map"},
        {.name = "--symmetry",
         .value = Value::Text,
         .valueName = "NAME",
         .help =
             "Place the model with its copies: C5, D7, T, O, I, a helix as H:27.6,-166.6 (rise in Å and twist "
             "in degrees, by the right hand along the rise; H:4.8,179,C2 with a twofold axis along it), H for "
             "any helix, or auto for the symmetry that the map has, if it has one",
         .defaultText = "no symmetry is looked for"},
        {.name = "--symmetry-axis",
         .value = Value::Text,
         .valueName = "X,Y,Z",
         .help = "Direction of the main axis, in the map's coordinates",
         .defaultText = "found from the map, or from the places"},
        {.name = "--symmetry-centre",
         .value = Value::Text,
         .valueName = "X,Y,Z",
         .help = "A point of the main axis, of Dn, T, O and I their centre, in Å in the map's coordinates",
         .defaultText = "found from the map, or from the places"},
        {.name = "--symmetry-from",
         .value = Value::File,
         .valueName = "FILE",
         .help =
             "Take symmetry, axis and centre from the operators of the first assembly in this mmCIF file, "
             "whose coordinates are the map's"},
        ThreadsOption("search"),

        Headed(
            "Output",
            JsonOption("Write the verdict, every place in full precision, the best first, and the score of "
                       "each residue at the first one")),
        ReportOption(),
        ViewerScriptOption(),
        {.name = "--assembly",
         .value = Value::File,
         .valueName = "FILE",
         .help = "Write all placed copies of --copies or of several models as one mmCIF file; chains keep "
                 "their names where these are free",
         .defaultText = "no file"},
        {.name = "--rest",
         .value = Value::File,
         .valueName = "FILE",
         .help =
             "Write the map less what the placed copies and the fixed parts explain: the place to look for what is "
             "missing",
         .defaultText = "no file"},
        ResultsOption("the places"),
        ModelsOption("Write the model at the N best places, the chains with all their atoms, "
                     "in the model file's format"),
        ModelPrefixOption("--model", "place"),
        {.name = "--moved-map",
         .value = Value::File,
         .valueName = "FILE",
         .help = "With a map as the model: write it in its place, on the lattice of the first map",
         .defaultText = "no file"},
        {.name = "--mirrored-map",
         .value = Value::File,
         .valueName = "FILE",
         .help = "With --hands: where the map proves to be mirrored, write the mirrored map, in which the "
                 "places lie: its voxels in the opposite order along x, in the same box",
         .defaultText = "no file"},
        QuietOption("Print neither the summary of the input nor progress; warnings, the verdict "
                    "and the table stay"),
    };
}

PlaceOptions ReadPlaceOptions(const Arguments &arguments) {
    CheckTogether(arguments, "--fixed-chains", "--fixed");
    CheckTogether(arguments, "--mirrored-map", "--hands");
    CheckTogether(arguments, "--symmetry-axis", "--symmetry");
    CheckTogether(arguments, "--symmetry-centre", "--symmetry");
    PlaceOptions options;
    options.map = arguments.Text("--map");
    options.model = arguments.Texts("--model").front();
    options.parts = Parts(arguments);
    options.assembly = arguments.GivenText("--assembly");
    options.rest = arguments.GivenText("--rest");
    options.distances = Distances(arguments);
    options.resolution = Resolution(arguments);
    options.chains = arguments.List("--chain");
    if (arguments.Has("--min-plddt"))
        options.minPlddt = arguments.Number("--min-plddt");
    options.invert = arguments.Has("--invert");
    options.scope = Scope(arguments);
    options.region = Region(arguments);
    options.fixed = arguments.Texts("--fixed");
    options.fixedChains = arguments.List("--fixed-chains");
    options.hands = arguments.Has("--hands");
    options.symmetry = SymmetryIn(arguments);
    options.movedMap = arguments.GivenText("--moved-map");
    options.mirroredMap = arguments.GivenText("--mirrored-map");
    options.json = arguments.GivenText("--json");
    options.report = arguments.GivenText("--report");
    options.viewerScript = arguments.GivenText("--viewer-script");
    options.results = arguments.GivenText("--results");
    // More than the search keeps are never written.
    options.models = IntegerOf(arguments, "--models", 0, 150, 0);
    options.modelPrefix = ModelPrefixOf(arguments, "--model", "place");
    options.quiet = arguments.Has("--quiet");
    options.threads = ThreadsOf(arguments);
    options.command = CommandLineOf("place", PlaceOptionTable(), arguments);
    return options;
}

} // namespace batch
