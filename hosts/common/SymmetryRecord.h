#pragma once

#include "hosts/common/JsonText.h"
#include "hosts/common/SymmetryOptions.h"

#include "placement/SymmetricPlaces.h"

namespace hosts {

/// Which symmetry was looked for and what came of it, as the JSON file of a placement tells it.
struct SymmetryRecord {
    placement::SymmetryRequest request;
    placement::MapSymmetry ofMap;
    placement::PlaceSymmetry ofPlaces;
    std::optional<placement::UsedSymmetry> used;
    placement::NotUsed reason = placement::NotUsed::NotFound;
    placement::Point middle; ///< the map's voxel (nx/2, ny/2, nz/2), Å
};

/// The record of a search, whose places are its caller's. The map is the one that was searched.
SymmetryRecord MakeSymmetryRecord(const placement::SymmetryRequest &request,
                                  const placement::SymmetricResult &result, const placement::VolumeView &map);

/// The symmetry and its evidence in sentences for people, each without the last full stop: what was found, or
/// that the map does not have what was asked for; what the places say; where axis and centre lie, and how far
/// from the map's middle voxel and from the origin of its coordinates; how many copies there are.
std::vector<std::string> SymmetryTexts(const SymmetryRecord &record);

Json SymmetryJson(const SymmetryRecord &record);

} // namespace hosts
