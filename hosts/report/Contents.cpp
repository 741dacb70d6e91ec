#include "hosts/report/Contents.h"

#include "hosts/report/Markup.h"

#include "base/Words.h"

#include "base/Numbers.h"

#include <nlohmann/json.hpp>

#include <QString>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <map>
#include <numbers>
#include <stdexcept>

using placement::Point;

namespace report {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t maxRows = 100, maxRanked = 1000;

/// A member of an object; null where there is none.
const Json &Member(const Json &object, const std::string &name) {
    static const Json nothing;
    const auto found = object.is_object() ? object.find(name) : object.end();
    return found == object.end() ? nothing : *found;
}

/// Those that are not finite stand in records as null or as texts.
double NumberIn(const Json &value) {
    if (value.is_number())
        return value.get<double>();
    const double nothing = std::numeric_limits<double>::quiet_NaN();
    return value.is_string() ? base::ReadNumber(value.get<std::string>()).value_or(nothing) : nothing;
}

double NumberIn(const Json &object, const std::string &name) {
    return NumberIn(Member(object, name));
}

std::string TextIn(const Json &object, const std::string &name) {
    const Json &value = Member(object, name);
    return value.is_string() ? value.get<std::string>() : "";
}

bool IsTrue(const Json &object, const std::string &name) {
    const Json &value = Member(object, name);
    return value.is_boolean() && value.get<bool>();
}

std::optional<std::vector<double>> NumbersIn(const Json &object, const std::string &name, std::size_t count) {
    const Json &list = Member(object, name);
    if (!list.is_array() || list.size() != count)
        return std::nullopt;
    std::vector<double> numbers;
    for (const Json &entry : list)
        numbers.push_back(NumberIn(entry));
    if (!std::ranges::all_of(numbers, [](double number) { return std::isfinite(number); }))
        return std::nullopt;
    return numbers;
}

std::optional<Point> PointIn(const Json &object, const std::string &name) {
    const auto p = NumbersIn(object, name, 3);
    return p ? std::optional(Point{(*p)[0], (*p)[1], (*p)[2]}) : std::nullopt;
}

std::optional<ModelPose> PoseIn(const Json &entry) {
    const auto q = NumbersIn(entry, "rotation", 4);
    const auto t = PointIn(entry, "translation");
    if (!q || !t || std::ranges::all_of(*q, [](double number) { return number == 0; }))
        return std::nullopt;
    return ModelPose{{(*q)[0], (*q)[1], (*q)[2], (*q)[3]}, *t};
}

/// "A, B" of a list of texts; a text as it stands.
std::string ListText(const Json &list) {
    std::string text;
    for (const Json &entry : list)
        if (entry.is_string())
            text += (text.empty() ? "" : ", ") + entry.get<std::string>();
    return text;
}

std::string CentreText(const Json &entry) {
    const auto p = PointIn(entry, "centre");
    return p ? Figure(p->x, 1) + ", " + Figure(p->y, 1) + ", " + Figure(p->z, 1) : "–";
}

std::string Percent(double share) {
    return std::isfinite(share) ? Figure(100 * share, 0) + " %" : "–";
}

std::string NameOf(const std::string &file) {
    return std::filesystem::path(file).filename().string();
}

std::string Capital(std::string sentence) {
    if (!sentence.empty() && sentence[0] >= 'a' && sentence[0] <= 'z')
        sentence[0] = char(sentence[0] - 'a' + 'A');
    return sentence;
}

void AddRemark(Contents &contents, const std::string &sentence) {
    if (!sentence.empty())
        contents.remarks.push_back(Capital(sentence) + '.');
}

void AddFact(Contents &contents, const std::string &name, const std::string &text) {
    if (!text.empty())
        contents.facts.emplace_back(name, text);
}

void AddInput(Contents &contents, const std::string &name, const std::string &file) {
    const Fact input{name, file};
    if (!file.empty() && std::ranges::find(contents.inputs, file, &Fact::second) == contents.inputs.end())
        contents.inputs.push_back(input);
}

std::string Angstroms(double length) {
    return std::isfinite(length) ? base::GeneralNumber(length).toStdString() + " Å" : "";
}

/// How sure a place is, for people.
std::string ConfidenceWords(double probability) {
    if (std::isnan(probability))
        return "not judged";
    return probability >= 0.999  ? "sure"
           : probability >= 0.95 ? "nearly sure"
           : probability >= 0.5  ? "likely, not sure"
           : probability >= 0.05 ? "doubtful"
                                 : "as by chance";
}

std::string ProbabilityText(double probability) {
    return probability > 0.9995 ? "> 0.999" : Figure(probability, 3);
}

/// Appends as many entries as a report shows.
template <class RowOf>
void AddRows(Contents &contents, const Json &entries, RowOf rowOf) {
    for (std::size_t i = 0; i < std::min(entries.size(), maxRows); ++i) {
        contents.rows.push_back(rowOf(entries[i], i));
        contents.rows.back().name = contents.rowWord + ' ' + std::to_string(i + 1);
        contents.rows.back().pose = PoseIn(entries[i]);
    }
    contents.rowsLeftOut = entries.size() - contents.rows.size();
}

void AddScores(Contents &contents, const Json &entries) {
    for (const Json &entry : entries)
        contents.scores.scores.push_back(NumberIn(entry, "score"));
}

void AddSeconds(Contents &contents, double seconds) {
    if (std::isfinite(seconds))
        AddFact(contents, "Time", base::DurationText(seconds));
}

/// What placements of one model and of assemblies share.
void AddPlacementInput(Contents &contents, const Json &record) {
    const Json &input = Member(record, "input");
    contents.map = TextIn(input, "map");
    AddInput(contents, "map", contents.map);
    AddInput(contents, "model", TextIn(input, "model"));
    for (const Json &part : Member(input, "parts"))
        AddInput(contents, "model", TextIn(part, "file"));
    AddInput(contents, "moved map", TextIn(input, "movedMap"));
    for (const Json &fixed : Member(input, "fixed"))
        AddInput(contents, "in place before", TextIn(fixed, "file"));

    if (const double resolution = NumberIn(input, "resolution"); resolution > 0)
        AddFact(contents, "Resolution",
                IsTrue(input, "resolutionEstimated") ? Figure(resolution, 1) + " Å, estimated from the map"
                                                     : Angstroms(resolution));
    AddFact(contents, "Chains placed", ListText(Member(input, "chains")));
    if (const double residues = NumberIn(input, "residues"); std::isfinite(residues))
        AddFact(contents, "Residues", Figure(residues, 0));
    if (const double least = NumberIn(input, "minPlddt"); std::isfinite(least))
        AddFact(contents, "Least confidence of residues", base::GeneralNumber(least).toStdString());
    contents.isInverted = IsTrue(input, "inverted");
    if (contents.isInverted)
        AddFact(contents, "Map", "inverted: its density is dark");
    if (const std::string scope = TextIn(input, "scope"); !scope.empty())
        AddFact(contents, "Searched",
                scope == "near"     ? "near the model's start, in every turn"
                : scope == "refine" ? "the best place next to the model's start"
                                    : "the whole map, in every turn");
    if (const Json &region = Member(input, "region"); region.is_object())
        AddFact(contents, "Region",
                "centre within " + Angstroms(NumberIn(region, "radius")) + " of " + CentreText(region));
    AddSeconds(contents, NumberIn(Member(record, "search"), "seconds"));
}

void AddSymmetry(Contents &contents, const Json &record) {
    for (const Json &statement : Member(Member(record, "symmetry"), "statement"))
        AddRemark(contents, statement.is_string() ? "symmetry: " + statement.get<std::string>() : "");
}

void AddInterruption(Contents &contents, const Json &record) {
    if (IsTrue(Member(record, "search"), "cancelled"))
        AddRemark(contents, "the search was stopped before its end: what was found by then is shown, and the "
                            "verdict is that of an unfinished search");
}

Tone ToneOf(const std::string &verdict) {
    return verdict == "placed" ? Tone::Sure : verdict == "refined" ? Tone::Plain : Tone::Unsure;
}

Contents OfPlacement(const Json &record) {
    Contents contents;
    const Json &input = Member(record, "input"), &places = Member(record, "places");
    const std::string moved = TextIn(input, "movedMap"),
                      model = moved.empty() ? TextIn(input, "model") : moved;
    contents.title = NameOf(model) + " in " + NameOf(TextIn(input, "map"));
    contents.statement = Capital(TextIn(record, "statement")) + '.';
    contents.tone = ToneOf(TextIn(record, "verdict"));
    const Json &hand = Member(record, "hand");
    contents.isMirrored = IsTrue(hand, "placesAreMirrored");
    AddRemark(contents, TextIn(hand, "statement"));
    AddRemark(contents, TextIn(Member(record, "correlation"), "statement"));
    AddSymmetry(contents, record);
    AddInterruption(contents, record);
    if (IsTrue(Member(record, "search"), "mapSeemsInverted"))
        AddRemark(contents, "the map's extremes lie below its background: its density may be dark");
    AddPlacementInput(contents, record);
    AddFact(contents, "Forecast", TextIn(Member(record, "forecast"), "statement"));

    const bool hasFixed = !Member(input, "fixed").empty();
    contents.rowWord = "place";
    contents.columns = {
        {"Score"}, {"Probability"}, {"Confidence", Cells::Confidence}, {"In density"}, {"Centre, Å"}};
    if (hasFixed)
        contents.columns.insert(contents.columns.end() - 1, {"Overlap"});
    const double copies = NumberIn(record, "copies");
    const std::size_t found = copies > 0                              ? std::size_t(copies)
                              : TextIn(record, "verdict") == "placed" ? 1
                                                                      : 0;
    AddRows(contents, places, [&](const Json &entry, std::size_t index) {
        const double probability = NumberIn(entry, "probability");
        Row row{
            .name = {},
            .cells = {Figure(NumberIn(entry, "score"), 1), ProbabilityText(probability),
                      IsTrue(entry, "otherTurn") ? "another turn at place 1" : ConfidenceWords(probability),
                      Percent(NumberIn(entry, "inDensity")), CentreText(entry)},
            .model = model,
            .pose = {},
            .isFound = index < found};
        if (hasFixed)
            row.cells.insert(row.cells.end() - 1, Percent(NumberIn(entry, "overlap")));
        return row;
    });
    AddScores(contents, places);
    contents.scores.found = found;
    return contents;
}

std::string DistanceText(const Json &entry) {
    const double distance = NumberIn(entry, "distance");
    return TextIn(entry, "from") + " to " + TextIn(entry, "to") + ": " +
           (std::isfinite(distance) ? Figure(distance, 1) + " Å" : "one of them is not placed") +
           ", at most " + Angstroms(NumberIn(entry, "max")) +
           (IsTrue(entry, "holds") ? "" : ": it does not hold");
}

Contents OfAssembly(const Json &record) {
    Contents contents;
    const Json &parts = Member(record, "parts"), &copies = Member(record, "copies");
    contents.title =
        (parts.size() == 1 ? NameOf(TextIn(parts[0], "file")) : base::Counted(parts.size(), "model")) +
        " in " + NameOf(TextIn(Member(record, "input"), "map"));
    contents.statement = Capital(TextIn(record, "statement")) + '.';
    contents.tone = IsTrue(record, "complete") ? Tone::Sure : Tone::Unsure;
    contents.isTogether = true;
    for (const Json &part : parts)
        AddRemark(contents, NameOf(TextIn(part, "file")) + ": " + TextIn(part, "statement"));
    for (const Json &distance : Member(record, "distances"))
        AddRemark(contents, DistanceText(distance));
    if (const double explained = NumberIn(record, "explained"); std::isfinite(explained))
        AddRemark(contents, "together they explain " + Figure(100 * explained, 1) +
                                " % of the map's power up to its resolution");
    AddSymmetry(contents, record);
    AddInterruption(contents, record);
    AddPlacementInput(contents, record);

    contents.rowWord = "copy";
    contents.columns = {{"Model", Cells::Words},
                        {"Chains", Cells::Words},
                        {"Probability"},
                        {"Confidence", Cells::Confidence},
                        {"Score"},
                        {"Explains"},
                        {"Clashes"},
                        {"Centre, Å"}};
    AddRows(contents, copies, [](const Json &entry, std::size_t) {
        std::string chains;
        for (const Json &chain : Member(entry, "chains"))
            chains += (chains.empty() ? "" : ", ") + TextIn(chain, "name");
        const double probability = NumberIn(entry, "probability");
        return Row{.name = {},
                   .cells = {NameOf(TextIn(entry, "file")), chains, ProbabilityText(probability),
                             ConfidenceWords(probability), Figure(NumberIn(entry, "score"), 1),
                             Percent(NumberIn(entry, "explained")), Figure(NumberIn(entry, "clashes"), 0),
                             CentreText(entry)},
                   .model = TextIn(entry, "file"),
                   .pose = {},
                   .isFound = true};
    });
    AddScores(contents, copies);
    contents.scores.found = copies.size();
    return contents;
}

/// Angle of a rotation, degrees from 0 to 180.
double TurnOf(const placement::UnitQuaternion &q) {
    return 2 * std::atan2(std::hypot(q.x, q.y, q.z), std::abs(q.w)) * 180 / std::numbers::pi;
}

void AddFitSettings(Contents &contents, const Json &record) {
    const Json &input = Member(record, "input"), &settings = Member(record, "settings"),
               &counts = Member(record, "counts");
    contents.map = TextIn(input, "map");
    AddInput(contents, "map", contents.map);
    AddInput(contents, "target", TextIn(input, "target"));
    for (const Json &solid : Member(input, "solids"))
        AddInput(contents, "solid", solid.is_string() ? solid.get<std::string>() : "");
    AddInput(contents, "restraints", TextIn(input, "restraints"));
    AddFact(contents, "Chain", TextIn(input, "chain"));
    AddFact(contents, "Rotation axes", Figure(NumberIn(counts, "axes"), 0));
    AddFact(contents, "Rotation step",
            base::GeneralNumber(NumberIn(settings, "rotationStep")).toStdString() + "°");
    AddFact(contents, "Translations along each axis", Figure(NumberIn(settings, "translationSteps"), 0));
    AddFact(contents, "Translation step", Angstroms(NumberIn(settings, "translationStep")));
    AddFact(contents, "Inclusion distance", Angstroms(NumberIn(settings, "inclusionDistance")));
    AddFact(contents, "Solutions to keep", Figure(NumberIn(settings, "keep"), 0));
    AddSeconds(contents, NumberIn(counts, "seconds"));
}

std::string FitStatement(const Json &record, std::size_t kept) {
    const Json &counts = Member(record, "counts");
    const double tried = NumberIn(counts, "poses"), accepted = NumberIn(counts, "accepted");
    return base::Grouped(std::uint64_t(std::max(tried, 0.0))) + " poses searched, " +
           base::Grouped(std::uint64_t(std::max(accepted, 0.0))) + " without a clash, the best " +
           base::Grouped(kept) + " kept.";
}

Contents OfFit(const Json &record) {
    Contents contents;
    const Json &input = Member(record, "input"), &solutions = Member(record, "solutions"),
               &counts = Member(record, "counts"), &sample = Member(record, "sample");
    const std::string target = TextIn(input, "target");
    contents.title =
        "Chain " + TextIn(input, "chain") + " of " + NameOf(target) + " in " + NameOf(TextIn(input, "map"));
    contents.statement = solutions.empty()
                             ? "No pose was accepted: the target clashes with the fixed chains everywhere."
                             : FitStatement(record, solutions.size());
    contents.tone = solutions.empty() ? Tone::Unsure : Tone::Plain;
    if (NumberIn(counts, "axesDone") < NumberIn(counts, "axes"))
        AddRemark(contents, "the search was stopped after " + Figure(NumberIn(counts, "axesDone"), 0) +
                                " of " + Figure(NumberIn(counts, "axes"), 0) +
                                " axes: what was found by then is shown");
    AddRemark(contents,
              "a fit compares poses around the start with each other. How far a score lies above the mean of "
              "all poses tells how it stands out; it is no probability");
    AddFitSettings(contents, record);

    const double mean = NumberIn(sample, "mean"), deviation = NumberIn(sample, "deviation");
    const std::optional<Point> centre = PointIn(record, "centre");
    contents.rowWord = "pose";
    contents.columns = {{"Score"}, {"SD above mean"}, {"Turn, °"}, {"Centre moved, Å"}};
    AddRows(contents, solutions, [&](const Json &entry, std::size_t) {
        const double score = NumberIn(entry, "score"), nothing = std::numeric_limits<double>::quiet_NaN();
        const std::optional<ModelPose> pose = PoseIn(entry);
        double moved = nothing;
        if (pose && centre)
            moved = Length(MatrixOf(pose->rotation) * *centre + pose->translation - *centre);
        return Row{.name = {},
                   .cells = {Figure(score, 3),
                             Figure(deviation > 0 ? (score - mean) / deviation : nothing, 2),
                             Figure(pose ? TurnOf(pose->rotation) : nothing, 1), Figure(moved, 2)},
                   .model = target,
                   .pose = {},
                   .isFound = false};
    });
    AddScores(contents, solutions);
    contents.scores.found = std::min<std::size_t>(solutions.size(), 1);
    if (std::isfinite(mean) && std::isfinite(deviation)) {
        contents.scores.mean = mean;
        contents.scores.deviation = deviation;
    }
    return contents;
}

/// A ranking has the numbers of a pose in columns of their own.
std::optional<ModelPose> PoseInColumns(const Json &entry) {
    Json pose{{"rotation", Json::array()}, {"translation", Json::array()}};
    for (const char *letter : {"w", "x", "y", "z"})
        pose["rotation"].push_back(Member(entry, std::string("rotation_") + letter));
    for (const char *letter : {"x", "y", "z"})
        pose["translation"].push_back(Member(entry, std::string("translation_") + letter));
    return PoseIn(pose);
}

std::string ShortText(double number) {
    return std::isnan(number) ? "–" : QString::number(number, 'g', 2).toStdString();
}

void AddScreenSettings(Contents &contents, const Json &settings) {
    contents.map = TextIn(settings, "map");
    AddInput(contents, "map", contents.map);
    AddFact(contents, "Resolution", Angstroms(NumberIn(settings, "resolution")));
    if (const double least = NumberIn(settings, "min plddt"); std::isfinite(least))
        AddFact(contents, "Least confidence of residues", base::GeneralNumber(least).toStdString());
    if (IsTrue(settings, "split"))
        AddFact(contents, "Chains", "cut into domains at stretches of low confidence");
    contents.isInverted = IsTrue(settings, "invert");
    if (contents.isInverted)
        AddFact(contents, "Map", "inverted: its density is dark");
}

void AddProblems(Contents &contents, const Json &problems) {
    constexpr std::size_t shown = 10;
    for (std::size_t i = 0; i < std::min(shown, problems.size()); ++i)
        AddRemark(contents, "without a result: " + TextIn(problems[i], "model") + ": " +
                                TextIn(problems[i], "problem"));
    if (problems.size() > shown)
        AddRemark(contents, base::Counted(problems.size() - shown, "more model") + " without a result");
}

Contents OfScreen(const Json &record) {
    Contents contents;
    const Json &ranking = Member(record, "ranking"), &settings = Member(record, "settings");
    std::size_t found = 0;
    for (const Json &entry : ranking) {
        if (contents.ranking.size() < maxRanked)
            contents.ranking.push_back({NumberIn(entry, "expected"), IsTrue(entry, "declared")});
        found += IsTrue(entry, "declared") ? 1 : 0;
    }
    contents.title = base::Counted(ranking.size(), "model") + " in " + NameOf(TextIn(settings, "map"));
    contents.statement = found == 0 ? "None of the models is found."
                                    : base::Grouped(found) + " of " + base::Counted(ranking.size(), "model") +
                                          (found == 1 ? " is found." : " are found.");
    contents.tone = found > 0 ? Tone::Sure : Tone::Unsure;
    AddRemark(
        contents,
        "a model is called found where at most 1 % of those called so are expected to be wrong: its q is "
        "at most 0.01. E is the number of wrong places that are expected to score as well as its best one");
    AddProblems(contents, Member(record, "problems"));
    AddScreenSettings(contents, settings);
    contents.rowWord = "rank";
    contents.columns = {{"Model", Cells::Words},
                        {"Found", Cells::Confidence},
                        {"q"},
                        {"E"},
                        {"Score"},
                        {"Same place as"},
                        {"Residues"}};
    AddRows(contents, ranking, [](const Json &entry, std::size_t index) {
        const double same = NumberIn(entry, "same_place");
        const std::string model = TextIn(entry, "model"), domain = TextIn(entry, "domain");
        return Row{.name = {},
                   .cells = {domain.empty() ? model : model + ' ' + domain,
                             IsTrue(entry, "declared") ? "yes" : "no", ShortText(NumberIn(entry, "q")),
                             ShortText(NumberIn(entry, "expected")), Figure(NumberIn(entry, "score"), 1),
                             same > 0 && same != double(index + 1) ? Figure(same, 0) : "",
                             Figure(NumberIn(entry, "residues"), 0)},
                   .model = model,
                   .pose = {},
                   .isFound = IsTrue(entry, "declared")};
    });
    for (std::size_t i = 0; i < contents.rows.size(); ++i)
        contents.rows[i].pose = PoseInColumns(ranking[i]);
    return contents;
}

} // namespace

Contents ContentsOf(const Json &record) {
    const std::string format = TextIn(record, "format");
    const std::map<std::string, Contents (*)(const Json &)> readers{{"morvanex fit", OfFit},
                                                                    {"morvanex place", OfPlacement},
                                                                    {"morvanex assembly", OfAssembly},
                                                                    {"morvanex screen", OfScreen}};
    const auto reader = readers.find(format);
    if (reader == readers.end())
        throw std::invalid_argument("there is no report of a record of the format \"" + format + "\"");
    Contents contents = reader->second(record);
    contents.program = TextIn(record, "program");
    return contents;
}

} // namespace report
