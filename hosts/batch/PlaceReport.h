#pragma once

#include "hosts/common/PlaceInput.h"
#include "hosts/common/PlaceRecord.h"

namespace batch {

/// What a placement says on standard output.

/// What was read, and what is to be expected of the search.
void ReportPlaceInput(const hosts::PlaceOptions &options, const hosts::PlaceInput &input);
/// A table of the ten best places; with their overlap where something is fixed.
void PrintPlaces(const placement::PlacementResult &result, bool hasFixed);
/// What was left out of the map, the verdict, a table of the ten best places, and the files written, a line
/// each.
void ReportPlaces(const hosts::PlaceRecord &record, const hosts::PlaceInput &input,
                  const std::vector<std::string> &written);

} // namespace batch
