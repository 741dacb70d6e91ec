#include "hosts/common/AssemblyRecord.h"

#include "base/Numbers.h"
#include "base/Words.h"

#include "hosts/common/Chains.h"
#include "hosts/common/Distances.h"
#include "hosts/common/JsonText.h"

#include "formats/files/NodeName.h"
#include "placement/SymmetricAssembly.h"

#include <algorithm>
#include <set>

using namespace placement;

namespace hosts {

namespace {

/// Hands out names of chains, each once.
class ChainNamer {
public:
    explicit ChainNamer(const std::vector<FixedPart> &fixed) {
        for (const FixedPart &part : fixed)
            m_taken.insert(part.chains.begin(), part.chains.end());
    }

    std::string NameFor(const std::string &author) {
        if (m_taken.insert(author).second)
            return author;
        const std::string stem(base::Trimmed(author));
        for (std::size_t number = 2;; ++number)
            if (const std::string name = stem + std::to_string(number); m_taken.insert(name).second)
                return name;
    }

private:
    std::set<std::string> m_taken;
};

void NameChains(AssemblyRecord &record) {
    ChainNamer namer(record.fixed);
    for (const PlacedCopy &copy : record.result.copies) {
        std::vector<std::string> &names = record.chainNames.emplace_back();
        for (const std::string &chain : record.parts[copy.part].chains)
            names.push_back(namer.NameFor(chain));
    }
}

/// The parts' names, "a, b".
template <class Numbers>
std::string PartNames(const AssemblyRecord &record, const Numbers &parts) {
    std::string names;
    for (const std::size_t part : parts)
        names += (names.empty() ? "" : ", ") + record.parts[part].name;
    return names;
}

std::string LeftName(Left left) {
    switch (left) {
    case Left::Nothing:
        return "nothing";
    case Left::NothingFound:
        return "nothing-found";
    case Left::TurnUnsure:
        return "turn-unsure";
    case Left::Taken:
        return "taken";
    case Left::Doubtful:
        return "doubtful";
    case Left::CutOff:
        return "cut-off";
    case Left::NotJudged:
        return "not-judged";
    case Left::NotFinished:
        return "not-finished";
    }
    return {};
}

std::string ReasonText(const AssemblyRecord &record, const PartOutcome &outcome) {
    const std::string further = outcome.placed > 0 ? "no further place" : "no place";
    const std::string probability = " (probability " + base::PlainFixed(outcome.probability, 3) + ")";
    switch (outcome.left) {
    case Left::Nothing:
        return {};
    case Left::NothingFound:
        return further + " stands out" + probability;
    case Left::TurnUnsure:
        return "a place is sure, but the turn there is not" + probability;
    case Left::Taken:
        return "its place is taken by " + PartNames(record, outcome.rivals);
    case Left::Doubtful:
        return "a place that stood out is not sure beside the other parts" + probability;
    case Left::CutOff:
        return further + " is whole: one reaches out of the map";
    case Left::NotJudged:
        return "the map is sharpened without a low-pass filter, and nothing is called sure in it";
    case Left::NotFinished:
        return "the search was stopped";
    }
    return {};
}

/// The parts that fit the places of this one as well.
std::set<std::size_t> RivalsOf(const AssemblyRecord &record, std::size_t part) {
    std::set<std::size_t> rivals;
    for (const PlacedCopy &copy : record.result.copies)
        if (copy.part == part)
            rivals.insert(copy.rivals.begin(), copy.rivals.end());
    return rivals;
}

Json Input(const AssemblyRecord &record) {
    const PlaceOptions &options = record.options;
    Json fixed = Json::array(), parts = Json::array();
    for (const FixedPart &part : record.fixed)
        fixed.push_back({{"file", part.file}, {"chains", part.chains}});
    for (const PartRecord &part : record.parts)
        parts.push_back({{"file", part.file},
                         {"copies", part.copies ? Json(*part.copies) : Json(nullptr)},
                         {"chains", part.chains},
                         {"residues", part.residues}});
    return {{"map", options.map},
            {"parts", parts},
            {"resolution", record.resolution},
            {"resolutionEstimated", !options.resolution.has_value()},
            {"inverted", options.invert},
            {"minPlddt", options.minPlddt ? Json(*options.minPlddt) : Json(nullptr)},
            {"fixed", fixed}};
}

Json Head(const AssemblyRecord &record) {
    const AssemblyResult &result = record.result;
    return {{"format", "morvanex assembly"},
            {"version", 1},
            {"program", "morvanex " MORVANEX_VERSION},
            {"complete", IsComplete(record)},
            {"statement", AssemblyText(record)},
            {"explained", result.explained},
            {"symmetry", record.symmetry ? SymmetryJson(*record.symmetry) : Json(nullptr)},
            {"input", Input(record)},
            {"search",
             {{"searches", result.searches}, {"cancelled", result.cancelled}, {"seconds", record.seconds}}}};
}

Json PartEntry(const AssemblyRecord &record, std::size_t part) {
    const PartOutcome &outcome = record.result.parts[part];
    Json rivals = Json::array();
    for (const std::size_t rival : outcome.rivals)
        rivals.push_back(record.parts[rival].file);
    return {{"file", record.parts[part].file},
            {"wanted", record.parts[part].copies ? Json(*record.parts[part].copies) : Json(nullptr)},
            {"placed", outcome.placed},
            {"left", LeftName(outcome.left)},
            {"statement", PartText(record, part)},
            {"probability", outcome.probability},
            {"rivals", rivals}};
}

Json CopyEntry(const AssemblyRecord &record, std::size_t number) {
    const PlacedCopy &copy = record.result.copies[number];
    const PartRecord &part = record.parts[copy.part];
    Json chains = Json::array(), rivals = Json::array();
    for (std::size_t i = 0; i < part.chains.size(); ++i)
        chains.push_back({{"chain", part.chains[i]}, {"name", record.chainNames[number][i]}});
    for (const std::size_t rival : copy.rivals)
        rivals.push_back(record.parts[rival].file);
    return {{"file", part.file},
            {"copy", copy.copy + 1},
            {"chains", chains},
            {"probability", copy.probability},
            {"logExpected", copy.logExpected},
            {"score", copy.score},
            {"contacts", copy.contacts},
            {"clashes", copy.clashes},
            {"moved", copy.moved},
            {"explained", copy.explained},
            {"rivals", rivals},
            {"centre", PointOf(copy.pose.centre)},
            {"rotation", RotationOf(copy.pose.rotation)},
            {"translation", PointOf(copy.translation)}};
}

Json DistanceEntry(const AssemblyRecord &record, std::size_t number) {
    const DistanceOptions &asked = record.options.distances[number];
    const std::optional<double> &distance = record.distances[number];
    return {{"from", TextOf(asked.a)},
            {"to", TextOf(asked.b)},
            {"max", asked.max},
            {"distance", distance ? Json(*distance) : Json(nullptr)},
            {"holds", Holds(record, number)}};
}

/// What the known distances are between the copies.
void MeasureDistances(AssemblyRecord &record) {
    std::vector<PartInPlace> copies;
    for (const PlacedCopy &copy : record.result.copies)
        copies.push_back(InPlace(copy));
    for (const Connection &connection : record.connections)
        record.distances.push_back(ShortestDistance(connection, copies));
}

} // namespace

AssemblyRecord MakeAssemblyRecord(const PlaceOptions &options, const PlaceInput &input) {
    AssemblyRecord record;
    record.options = options;
    record.resolution = input.resolution;
    for (std::size_t i = 0; i < input.parts.size(); ++i) {
        const PlaceModel &model = input.parts[i];
        record.parts.push_back({.file = model.file,
                                .name = formats::NodeName(model.file),
                                .copies = options.parts[i].copies,
                                .chains = NamesOf(model.chains),
                                .residues = model.residues.size()});
    }
    for (const SolidFile &fixed : input.fixed)
        record.fixed.push_back({fixed.file, NamesOf(fixed.chains)});
    record.connections = ConnectionsOf(options.distances, input);
    return record;
}

namespace {

/// The copies of one model that a symmetry relates.
void FindSymmetricAssemblyOf(const PlaceInput &input, AssemblyRecord &record, Monitor &monitor) {
    const PlacementParameters parameters{
        .resolution = input.resolution, .threads = unsigned(record.options.threads), .region = {}};
    const VolumeView map = ViewOf(*input.map);
    const std::vector<ModelAtom> &atoms = input.parts.front().atoms;
    const SymmetricResult found = FindSymmetricPlaces(map, atoms, parameters, input.symmetry, monitor);
    record.symmetry = MakeSymmetryRecord(input.symmetry, found, map);
    record.result = AssemblyOf(found, map, atoms, parameters);
}

} // namespace

void FindAssemblyOf(const PlaceInput &input, AssemblyRecord &record, Monitor &monitor) {
    if (record.options.symmetry) {
        FindSymmetricAssemblyOf(input, record, monitor);
        NameChains(record);
        return;
    }
    std::vector<AssemblyPart> parts;
    for (std::size_t i = 0; i < input.parts.size(); ++i)
        parts.push_back({input.parts[i].atoms, record.parts[i].copies});
    record.result = FindAssembly(ViewOf(*input.map), parts,
                                 {.resolution = input.resolution,
                                  .threads = unsigned(record.options.threads),
                                  .neighbours = input.neighbours,
                                  .connections = record.connections},
                                 monitor);
    NameChains(record);
    MeasureDistances(record);
}

PartInPlace InPlace(const PlacedCopy &copy) {
    return {copy.part, {copy.pose.rotation, copy.translation}};
}

std::string CopiesText(std::size_t number) {
    return std::to_string(number) + (number == 1 ? " copy" : " copies");
}

bool IsComplete(const AssemblyRecord &record) {
    for (std::size_t i = 0; i < record.parts.size(); ++i)
        if (record.result.parts[i].placed < record.parts[i].copies.value_or(1))
            return false;
    return true;
}

std::string AssemblyText(const AssemblyRecord &record) {
    const AssemblyResult &result = record.result;
    const auto placed = std::size_t(
        std::ranges::count_if(result.parts, [](const PartOutcome &part) { return part.placed > 0; }));
    std::string text = CopiesText(result.copies.size()) + " placed";
    if (record.parts.size() > 1)
        text += ", of " + std::to_string(placed) + " of " + base::Counted(record.parts.size(), "model");
    return text;
}

std::string PartText(const AssemblyRecord &record, std::size_t part) {
    const PartOutcome &outcome = record.result.parts[part];
    const std::optional<std::size_t> wanted = record.parts[part].copies;
    std::string text = outcome.placed == 0     ? "not placed"
                       : wanted && *wanted > 1 ? std::to_string(outcome.placed) + " of " +
                                                     std::to_string(*wanted) + " copies placed"
                                               : CopiesText(outcome.placed) + " placed";
    if (const std::set<std::size_t> rivals = RivalsOf(record, part); !rivals.empty())
        text += ", but " + PartNames(record, rivals) + (rivals.size() == 1 ? " fits" : " fit") +
                " the same place equally well";
    const std::string reason = ReasonText(record, outcome);
    // Of a part whose copies nobody has counted the last one is the end, not a failure.
    return reason.empty() ? text : text + (wanted || outcome.placed == 0 ? ": " : "; ") + reason;
}

bool Holds(const AssemblyRecord &record, std::size_t distance) {
    const std::optional<double> &found = record.distances[distance];
    return found && *found <= record.options.distances[distance].max;
}

std::string DistanceText(const AssemblyRecord &record, std::size_t number) {
    const DistanceOptions &asked = record.options.distances[number];
    const std::optional<double> &distance = record.distances[number];
    return TextOf(asked.a) + " to " + TextOf(asked.b) + ": " +
           (distance ? base::PlainFixed(*distance, 1) + " Å" : "one of them is not placed") + ", at most " +
           base::GeneralNumber(asked.max).toStdString() + " Å";
}

std::string RefinementText(const AssemblyRecord &record) {
    if (record.symmetry && record.symmetry->used)
        return "all copies together, by their symmetry";
    double sum = 0, most = 0;
    for (const PlacedCopy &copy : record.result.copies) {
        sum += copy.moved;
        most = std::max(most, copy.moved);
    }
    return "all copies together, which moved them by " +
           base::PlainFixed(sum / double(record.result.copies.size()), 2) + " Å on average and by " +
           base::PlainFixed(most, 2) + " Å at most";
}

std::string ExplainedText(const AssemblyRecord &record) {
    return base::PlainFixed(100 * record.result.explained, 1) + " % of the map's power up to its resolution";
}

std::vector<std::string> WarningsOf(const AssemblyRecord &record) {
    if (record.options.assembly && record.result.copies.empty())
        return {*record.options.assembly + " is not written, since nothing is placed"};
    return {};
}

void WriteAssemblyJson(std::ostream &out, const AssemblyRecord &record) {
    WriteHead(out, Head(record));
    WriteList(out, "parts", record.parts.size(), [&](std::size_t i) { return PartEntry(record, i); });
    WriteList(out, "copies", record.result.copies.size(),
              [&](std::size_t i) { return CopyEntry(record, i); });
    WriteList(out, "distances", record.distances.size(),
              [&](std::size_t i) { return DistanceEntry(record, i); });
    out << "\n}\n";
}

} // namespace hosts
