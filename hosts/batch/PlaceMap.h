#pragma once

#include "hosts/common/PlaceOptions.h"

namespace batch {

/// Places a map in the map: the way of `place` where the model is a density map. Returns the exit status.
/// Throws as its readers do, and ParameterError for what only a structure has.
int PlaceMap(const hosts::PlaceOptions &options);

} // namespace batch
