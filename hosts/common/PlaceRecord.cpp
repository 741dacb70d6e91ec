#include "hosts/common/PlaceRecord.h"

#include "base/Numbers.h"
#include "base/Words.h"

#include "hosts/common/Chains.h"
#include "hosts/common/JsonText.h"

#include "placement/Forecast.h"

#include <numbers>
#include <ostream>

using namespace placement;

namespace hosts {

namespace {

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

std::string ScopeName(PlaceScope scope) {
    switch (scope) {
    case PlaceScope::WholeMap:
        return "whole-map";
    case PlaceScope::Near:
        return "near";
    case PlaceScope::Refine:
        return "refine";
    }
    return {};
}

Json Input(const PlaceRecord &record) {
    const PlaceOptions &options = record.options;
    Json fixed = Json::array();
    for (const FixedPart &part : record.fixed)
        fixed.push_back({{"file", part.file}, {"chains", part.chains}});
    return {{"map", options.map},
            {"model", options.model},
            {"chains", record.chains},
            {"residues", record.residues.size()},
            {"resolution", record.resolution},
            {"resolutionEstimated", !options.resolution.has_value()},
            {"inverted", options.invert},
            {"minPlddt", options.minPlddt ? Json(*options.minPlddt) : Json(nullptr)},
            {"scope", ScopeName(options.scope)},
            {"region", options.region ? Json{{"centre", PointOf(options.region->centre)},
                                             {"radius", options.region->radius}}
                                      : Json(nullptr)},
            {"fixed", fixed}};
}

Json ConfidenceOf(const PlacementResult &result) {
    if (result.verdict == Verdict::Refined)
        return nullptr; // of one place nothing is known of others
    Json json = ConfidenceJson(result.confidence);
    json["background"] = {
        {"places", result.tail.number}, {"scale", result.tail.scale}, {"square", result.tail.square}};
    return json;
}

Json HandJson(const HandVerdict &hand) {
    return {{"verdict", HandName(hand.hand)},
            {"statement", HandText(hand)},
            {"placesAreMirrored", hand.hand == Hand::Mirrored},
            {"asGiven", {{"probability", hand.asGiven}, {"confidence", ConfidenceJson(hand.given)}}},
            {"mirrored", {{"probability", 1 - hand.asGiven}, {"confidence", ConfidenceJson(hand.mirrored)}}}};
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
        {"copies", FoundCopies(result)},
        {"confidence", ConfidenceOf(result)},
        {"hand", record.hand ? HandJson(*record.hand) : Json(nullptr)},
        {"symmetry", record.symmetry ? SymmetryJson(*record.symmetry) : Json(nullptr)},
        {"forecast",
         {{"signal", result.predictedSignal},
          {"prospect", ProspectName(result.predictedSignal)},
          {"statement", ForecastText(result.predictedSignal)}}},
        {"input", Input(record)},
        {"search",
         {{"voxels", result.searched},
          {"scanResolution", result.scanResolution},
          {"rotations", result.rotations},
          {"rotationStep", result.rotationStep * 180 / std::numbers::pi},
          {"powerBeyondResolution", result.sharpShare},
          {"mapSeemsInverted", result.seemsInverted},
          {"cancelled", result.cancelled},
          {"seconds", record.seconds}}},
    };
}

PlacementResult SearchOneHand(const PlaceInput &input, const PlacementParameters &parameters,
                              PlaceScope scope, Monitor &monitor) {
    if (scope == PlaceScope::Refine)
        return RefinePlace(ViewOf(*input.map), input.atoms, parameters, monitor);
    return input.prepared ? FindPlaces(*input.prepared, input.atoms, parameters, monitor)
                          : FindPlaces(ViewOf(*input.map), input.atoms, parameters, monitor);
}

} // namespace

PlaceRecord MakePlaceRecord(const PlaceOptions &options, const PlaceInput &input) {
    PlaceRecord record;
    record.options = options;
    record.chains = NamesOf(input.chains);
    record.residues = input.residues;
    record.resolution = input.resolution;
    for (const SolidFile &fixed : input.fixed)
        record.fixed.push_back({fixed.file, NamesOf(fixed.chains)});
    return record;
}

void FindPlacesOf(const PlaceInput &input, PlaceRecord &record, Monitor &monitor) {
    const PlaceOptions &options = record.options;
    PlacementParameters parameters{.resolution = input.resolution,
                                   .threads = unsigned(options.threads),
                                   .region = options.region,
                                   .neighbours = input.neighbours,
                                   .ruleOut = input.ruleOut};
    if (options.scope == PlaceScope::Near) {
        const PointModel model = MakePointModel(input.atoms);
        parameters.region = Sphere{model.centre, model.radius};
    }
    if (options.symmetry) {
        SymmetricResult result =
            FindSymmetricPlaces(ViewOf(*input.map), input.atoms, parameters, input.symmetry, monitor);
        record.symmetry = MakeSymmetryRecord(input.symmetry, result, ViewOf(*input.map));
        record.result = std::move(result.placement);
        return;
    }
    if (!options.hands) {
        record.result = SearchOneHand(input, parameters, options.scope, monitor);
        return;
    }
    HandResult both = FindHand(ViewOf(*input.map), input.atoms, parameters, monitor);
    record.hand = {both.hand, both.asGiven, both.given.confidence, both.mirrored.confidence};
    record.result = std::move(record.IsMirrored() ? both.mirrored : both.given);
}

std::string HandName(Hand hand) {
    switch (hand) {
    case Hand::AsGiven:
        return "as-given";
    case Hand::Mirrored:
        return "mirrored";
    case Hand::Unknown:
        return "unknown";
    }
    return {};
}

std::string VerdictName(Verdict verdict) {
    switch (verdict) {
    case Verdict::Placed:
        return "placed";
    case Verdict::TurnUnsure:
        return "turn-unsure";
    case Verdict::NothingFound:
        return "nothing-found";
    case Verdict::RuledOut:
        return "ruled-out";
    case Verdict::NotJudged:
        return "not-judged";
    case Verdict::NoDensity:
        return "no-density";
    case Verdict::Refined:
        return "refined";
    }
    return {};
}

std::string AboveOrOf(double probability) {
    return probability > 0.9995 ? "above 0.999" : "of " + base::PlainFixed(probability, 3);
}

namespace {

std::string CopiesText(std::size_t copies) {
    return copies > 1 ? "; " + std::to_string(copies) + " places are found, copies of the model" : "";
}

std::string RefinedText(const PlacementResult &result) {
    const Place &place = result.places.front();
    constexpr double degrees = 180 / std::numbers::pi;
    return "refined: moved by " + base::PlainFixed(Length(place.pose.centre - result.start), 2) +
           " Å and turned by " + base::PlainFixed(AngleOf(place.pose.rotation) * degrees, 1) +
           "° to the best place near by; the rest of the map was not searched";
}

/// A model that fills the map's box has few other places in it, turns of itself that score nearly as well as
/// it does.
std::string FewPlacesText(std::size_t places) {
    constexpr std::size_t enough = 40;
    return places < enough
               ? ". Only " + std::to_string(places) +
                     " places lie in the map's box, too few for a probability to trust: judge the "
                     "first one by the share of the model that lies in density, or use a larger box"
               : "";
}

} // namespace

std::string VerdictText(const PlacementResult &result) {
    const std::string probability = base::PlainFixed(result.confidence.probability, 3);
    switch (result.verdict) {
    case Verdict::Placed:
        return "placed, with a probability " + AboveOrOf(result.confidence.probability) +
               CopiesText(FoundCopies(result));
    case Verdict::TurnUnsure:
        return "the place is sure, the turn is not: other turns about the same centre score nearly as well "
               "(probability of the first one " +
               probability + ")";
    case Verdict::NothingFound:
    case Verdict::RuledOut:
        return "no place stands out: wrong places are expected to score as well as the best one "
               "(probability " +
               probability + ")" + FewPlacesText(result.tail.number);
    case Verdict::NotJudged:
        return "the map is sharpened without a low-pass filter, and its noise hides what is sure: no "
               "probability is given. Low-pass the map at its resolution and try again";
    case Verdict::NoDensity:
        return "the map holds no density where the model could lie";
    case Verdict::Refined:
        return RefinedText(result);
    }
    return {};
}

std::string HandText(const HandVerdict &hand) {
    const auto probability = [](double p) { return " (with a probability " + AboveOrOf(p) + ")"; };
    switch (hand.hand) {
    case Hand::AsGiven:
        return "the map has the right hand" + probability(hand.asGiven);
    case Hand::Mirrored:
        return "the map is mirrored" + probability(1 - hand.asGiven) +
               "; places and models are those in the mirrored map, whose voxels stand in the opposite order "
               "along x";
    case Hand::Unknown:
        return "the hand cannot be told" + probability(hand.asGiven) +
               "; places and models are those in the map as it is";
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

std::vector<std::string> WarningsOf(const PlaceRecord &record) {
    std::vector<std::string> warnings;
    if (record.result.seemsInverted)
        warnings.push_back(
            "the map's extremes lie below its background. If its density is dark, search again with --invert");
    if (std::size_t(record.options.models) > record.result.places.size())
        warnings.push_back(base::Counted(std::size_t(record.options.models), "model") +
                           " were asked for, only " + base::Counted(record.result.places.size(), "place") +
                           " found");
    return warnings;
}

void WritePlaceJson(std::ostream &out, const PlaceRecord &record) {
    WriteHead(out, Head(record));
    const PlacementResult &result = record.result;
    WriteList(out, "places", result.places.size(), [&](std::size_t i) {
        return PlaceEntry(result.places[i], i + 1, result.verdict != Verdict::Refined);
    });
    WriteList(out, "profile", result.profile.size(), [&](std::size_t i) {
        return Json{{"chain", record.residues[i].chain},
                    {"residue", record.residues[i].label},
                    {"score", result.profile[i]}};
    });
    out << "\n}\n";
}

} // namespace hosts
