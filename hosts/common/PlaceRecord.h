#pragma once

#include "hosts/common/PlaceInput.h"
#include "hosts/common/SymmetryRecord.h"

#include "placement/Hand.h"

#include <iosfwd>

namespace hosts {

/// Chains of a file that were already in place.
struct FixedPart {
    std::string file;
    std::vector<std::string> chains; ///< identifiers
};

/// Which hand a map has, and how sure the best place is in each.
struct HandVerdict {
    placement::Hand hand = placement::Hand::Unknown;
    double asGiven = 0.5; ///< probability that the map has the right one
    placement::Confidence given, mirrored;
};

/// What a placement was and what came of it, as the JSON file tells it.
struct PlaceRecord {
    PlaceOptions options;
    double resolution = 0;           ///< Å, as given or as estimated
    std::vector<std::string> chains; ///< identifiers of those that moved
    std::vector<PlacedResidue> residues;
    std::vector<FixedPart> fixed; ///< what was already in place
    placement::PlacementResult result;
    std::optional<HandVerdict> hand;        ///< where both were searched
    std::optional<SymmetryRecord> symmetry; ///< where one was looked for
    double seconds = 0;

    /// Whether the places lie in the mirrored map.
    bool IsMirrored() const { return hand && hand->hand == placement::Hand::Mirrored; }
};

/// The record of a placement that is still to be searched for.
PlaceRecord MakePlaceRecord(const PlaceOptions &options, const PlaceInput &input);

/// Searches the map for the model, and the mirrored map where that is asked for: the record's result is that
/// of the mirrored one only where that hand is the right one.
void FindPlacesOf(const PlaceInput &input, PlaceRecord &record, placement::Monitor &monitor);

/// The verdict as the JSON file names it: "placed", "turn-unsure", "nothing-found", "ruled-out",
/// "not-judged", "no-density", "refined".
std::string VerdictName(placement::Verdict verdict);

/// The hand as the JSON file names it: "as-given", "mirrored", "unknown".
std::string HandName(placement::Hand hand);

/// A probability behind "with a probability": "of 0.973", or "above 0.999", since none is a certainty.
std::string AboveOrOf(double probability);

/// The verdict in a sentence for people, without the last full stop: "placed, with a probability of 0.99".
std::string VerdictText(const placement::PlacementResult &result);

/// The hand in a sentence for people, without the last full stop: "the map has the right hand, …".
std::string HandText(const HandVerdict &hand);

/// What was to be expected before the search, in a sentence without the last full stop.
std::string ForecastText(double predictedSignal);

/// What is remarkable in what came of a search, for the user: a warning each.
std::vector<std::string> WarningsOf(const PlaceRecord &record);

/// Writes the record: numbers in full precision, the best place first.
void WritePlaceJson(std::ostream &out, const PlaceRecord &record);

} // namespace hosts
