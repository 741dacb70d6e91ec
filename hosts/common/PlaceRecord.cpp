#include "hosts/common/PlaceRecord.h"

#include "base/Numbers.h"

#include "placement/Forecast.h"

#include <nlohmann/json.hpp>

#include <ostream>

using namespace placement;

namespace hosts {

namespace {

using Json = nlohmann::ordered_json;

/// File names need not be UTF-8, the file has to be.
std::string Dump(const Json &json, int indent = -1) {
    return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

Json PointOf(const Point &p) {
    return {p.x, p.y, p.z};
}

std::string ProspectName(double predictedSignal) {
    switch (ProspectOf(predictedSignal)) {
    case Prospect::Poor:
        return "poor";
    case Prospect::Uncertain:
        return "uncertain";
    case Prospect::Good:
        return "good";
    }
    return {};
}

Json Input(const PlaceRecord &record) {
    const PlaceOptions &options = record.options;
    return {{"map", options.map},
            {"model", options.model},
            {"chains", record.chains},
            {"residues", record.residues.size()},
            {"resolution", options.resolution},
            {"minPlddt", options.minPlddt ? Json(*options.minPlddt) : Json(nullptr)}};
}

Json Head(const PlaceRecord &record) {
    const PlacementResult &result = record.result;
    return {
        {"format", "morvanex place"},
        {"version", 1},
        {"program", "morvanex " MORVANEX_VERSION},
        {"placed", result.verdict == Verdict::Placed},
        {"verdict", VerdictName(result.verdict)},
        {"statement", VerdictText(result)},
        {"confidence",
         {{"probability", result.confidence.probability},
          {"place", result.confidence.place},
          {"otherTurns", result.confidence.otherTurns},
          {"logExpected", result.confidence.logExpected}}},
        {"forecast",
         {{"signal", result.predictedSignal},
          {"prospect", ProspectName(result.predictedSignal)},
          {"statement", ForecastText(result.predictedSignal)}}},
        {"input", Input(record)},
        {"search",
         {{"scanResolution", result.scanResolution},
          {"rotations", result.rotations},
          {"rotationStep", result.rotationStep * 180 / 3.141592653589793},
          {"powerBeyondResolution", result.sharpShare},
          {"cancelled", result.cancelled},
          {"seconds", record.seconds}}},
    };
}

Json Entry(const Place &place, std::size_t rank) {
    const UnitQuaternion q = QuaternionOf(place.pose.rotation);
    return {{"rank", rank},
            {"score", place.score},
            {"probability", place.probability},
            {"logExpected", place.logExpected},
            {"inDensity", place.inDensity},
            {"centre", PointOf(place.pose.centre)},
            {"rotation", {q.w, q.x, q.y, q.z}},
            {"translation", PointOf(place.translation)}};
}

/// Writes the entries of a list, each on a line of its own.
template <class EntryAt>
void WriteList(std::ostream &out, const std::string &name, std::size_t size, EntryAt entryAt) {
    out << ",\n  \"" << name << "\": [";
    for (std::size_t i = 0; i < size; ++i)
        out << (i > 0 ? ",\n    " : "\n    ") << Dump(entryAt(i));
    out << "\n  ]";
}

} // namespace

PlacementResult FindPlacesOf(const PlaceInput &input, const PlaceOptions &options, Monitor &monitor) {
    const VARNO::Grid &map = *input.map;
    VolumeView view;
    for (unsigned axis = 0; axis < 3; ++axis) {
        view.count[axis] = map.Dimensions()[axis];
        view.spacing[axis] = double(map.Spacing()[axis]);
    }
    view.origin = {double(map.Origin()[0]), double(map.Origin()[1]), double(map.Origin()[2])};
    view.values = map.Values();
    return FindPlaces(view, input.atoms,
                      {.resolution = options.resolution, .threads = unsigned(options.threads), .allowed = {}},
                      monitor);
}

std::string VerdictName(Verdict verdict) {
    switch (verdict) {
    case Verdict::Placed:
        return "placed";
    case Verdict::TurnUnsure:
        return "turn-unsure";
    case Verdict::NothingFound:
        return "nothing-found";
    case Verdict::NotJudged:
        return "not-judged";
    case Verdict::NoDensity:
        return "no-density";
    }
    return {};
}

std::string VerdictText(const PlacementResult &result) {
    const std::string probability = base::PlainFixed(result.confidence.probability, 3);
    switch (result.verdict) {
    case Verdict::Placed:
        return "placed, with a probability of " + probability;
    case Verdict::TurnUnsure:
        return "the place is sure, the turn is not: other turns about the same centre score nearly as well "
               "(probability of the first one " +
               probability + ")";
    case Verdict::NothingFound:
        return "no place stands out: wrong places are expected to score as well as the best one "
               "(probability " +
               probability + ")";
    case Verdict::NotJudged:
        return "the map is sharpened without a low-pass filter, and its noise hides what is sure: no "
               "probability is given. Low-pass the map at its resolution and try again";
    case Verdict::NoDensity:
        return "the map holds no density where the model could lie";
    }
    return {};
}

std::string ForecastText(double predictedSignal) {
    const std::string figure = " (predicted signal " + base::PlainFixed(predictedSignal, 1) + ")";
    switch (ProspectOf(predictedSignal)) {
    case Prospect::Poor:
        return "so small a model at this resolution is seldom found" + figure;
    case Prospect::Uncertain:
        return "a model of this size at this resolution is found more often than not" + figure;
    case Prospect::Good:
        return "a model of this size at this resolution is nearly always found" + figure;
    }
    return {};
}

void WritePlaceJson(std::ostream &out, const PlaceRecord &record) {
    std::string head = Dump(Head(record), 2);
    head.resize(head.size() - std::string("\n}").size());
    out << head;
    const PlacementResult &result = record.result;
    WriteList(out, "places", result.places.size(),
              [&](std::size_t i) { return Entry(result.places[i], i + 1); });
    WriteList(out, "profile", result.profile.size(), [&](std::size_t i) {
        return Json{{"chain", record.residues[i].chain},
                    {"residue", record.residues[i].label},
                    {"score", result.profile[i]}};
    });
    out << "\n}\n";
}

} // namespace hosts
