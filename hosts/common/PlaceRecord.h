#pragma once

#include "hosts/common/PlaceInput.h"

#include "placement/FindPlaces.h"

#include <iosfwd>

namespace hosts {

/// What a placement was and what came of it, as the JSON file tells it.
struct PlaceRecord {
    PlaceOptions options;
    double resolution = 0;           ///< Å, as given or as estimated
    std::vector<std::string> chains; ///< identifiers of those that moved
    std::vector<PlacedResidue> residues;
    placement::PlacementResult result;
    double seconds = 0;
};

/// Searches the map for the model.
placement::PlacementResult FindPlacesOf(const PlaceInput &input, const PlaceOptions &options,
                                        placement::Monitor &monitor);

/// The verdict as the JSON file names it: "placed", "turn-unsure", "nothing-found", "not-judged",
/// "no-density".
std::string VerdictName(placement::Verdict verdict);

/// The verdict in a sentence for people, without the last full stop: "placed, with a probability of 0.99".
std::string VerdictText(const placement::PlacementResult &result);

/// What was to be expected before the search, in a sentence without the last full stop.
std::string ForecastText(double predictedSignal);

/// Writes the record: numbers in full precision, the best place first.
void WritePlaceJson(std::ostream &out, const PlaceRecord &record);

} // namespace hosts
