#pragma once

#include "hosts/common/Delivery.h"
#include "hosts/common/PlaceRecord.h"

namespace hosts {

/// The files that a placement writes.

/// Throws FileError for an output that cannot be written, that is an input or that is another output. Changes
/// nothing.
void CheckPlaceOutputs(const PlaceOptions &options, formats::StructureFormat format);

/// Writes what was asked for, each file as a whole. A file that fails does not keep the others from being
/// written.
Delivery WritePlaceOutputs(const PlaceRecord &record, const PlaceInput &input);

/// The map with its voxels in the opposite order along x.
std::unique_ptr<VARNO::Grid> Mirrored(const VARNO::Grid &map, const std::string &name);

} // namespace hosts
