#pragma once

#include "hosts/common/Delivery.h"
#include "hosts/common/Inputs.h"
#include "hosts/common/PlaceOptions.h"

#include "placement/MapInMap.h"

#include <iosfwd>
#include <memory>

namespace hosts {

/// The maps, read into the model.
struct MapInMapInput {
    VARNO::Grid *map = nullptr, *moved = nullptr;
};

/// What a placement of a map was and what came of it, as the JSON file tells it.
struct MapInMapRecord {
    PlaceOptions options;
    placement::MapInMapResult result;
    double seconds = 0;
};

/// Reads both maps, that of `options.model` being the one that moves; `warn` hears what the reader took
/// differently from how it stands. Throws FileError, and ParameterError without a resolution and for what
/// only a structure has.
MapInMapInput ReadMapInMapInput(const PlaceOptions &options, const WarningSink &warn,
                                InputSource &source = InputFiles());

/// Throws FileError for an output that cannot be written, is one of the inputs or is named twice.
void CheckMapInMapOutputs(const PlaceOptions &options);

/// Lays the second map on the first. Throws FileError where it holds no density.
void FindMapOf(const MapInMapInput &input, MapInMapRecord &record, placement::Monitor &monitor);

/// Sentences for people, without the last full stop: which hand the second map has, and how well it agrees.
std::string MapHandText(const placement::MapInMapResult &result);
std::string CorrelationText(const placement::MapInMapResult &result);

/// What is remarkable in what came of a search, for the user: a warning each.
std::vector<std::string> WarningsOf(const MapInMapRecord &record);

/// Writes the record: numbers in full precision, the best place first.
void WriteMapInMapJson(std::ostream &out, const MapInMapRecord &record);

/// A map after a motion, on the lattice of another; 0 outside of its box. Has the name of the moved one.
std::unique_ptr<VARNO::Grid> MovedOnto(const VARNO::Grid &map, const VARNO::Grid &moved,
                                       const placement::MapMotion &motion, unsigned threads);

/// Writes the files that were asked for.
Delivery WriteMapInMapOutputs(const MapInMapRecord &record, const MapInMapInput &input);

} // namespace hosts
