#pragma once

#include "hosts/common/SymmetryOptions.h"

#include "placement/Geometry.h"

#include <optional>
#include <string>
#include <vector>

namespace hosts {

/// Where a model's place is looked for.
enum class PlaceScope {
    WholeMap,
    Near,   ///< with the centre within the model's own radius of where it is now, in every turn
    Refine, ///< the best place next to where it is now
};

/// A model of which copies are placed.
struct PartOptions {
    std::string file;
    std::optional<std::size_t> copies; ///< not set: as many as are found
};

/// A residue of a part or of a fixed file.
struct ResidueName {
    std::string part; ///< the file's name without folder and extensions; empty where it is not said
    std::string chain, sequenceId;
};

/// Two residues that are known to be near each other.
struct DistanceOptions {
    ResidueName a, b;
    double max = 0; ///< Å
};

/// What `place` is asked to do.
struct PlaceOptions {
    std::string map;
    std::string model;                ///< a structure, or a map that is laid on the first
    std::vector<PartOptions> parts;   ///< of an assembly; none: the places of one model are looked for
    std::optional<double> resolution; ///< Å; not set: estimated from the map
    std::optional<std::vector<std::string>> chains; ///< identifiers; not set: all polymer chains
    std::optional<double> minPlddt; ///< residues of less confidence are left out of the search
    bool invert = false;            ///< the map's density is dark: its values change their sign
    PlaceScope scope = PlaceScope::WholeMap;
    std::optional<placement::Sphere> region;             ///< where the model's centre may lie
    std::vector<std::string> fixed;                      ///< files of what is already in place
    std::optional<std::vector<std::string>> fixedChains; ///< not set: all polymer chains but those placed
    bool hands = false;                                  ///< search the mirrored map too
    std::optional<SymmetryOptions> symmetry;             ///< set: looked for and used

    std::optional<std::string> results;
    std::optional<std::string> json;
    std::optional<std::string> mirroredMap;  ///< is written where the places lie in it
    std::optional<std::string> assembly;     ///< all placed copies, mmCIF
    std::optional<std::string> rest;         ///< the map less what the copies and the fixed parts explain
    std::vector<DistanceOptions> distances;  ///< known ones between residues of an assembly
    std::optional<std::string> movedMap;     ///< a map that is the model, in its place on the map's lattice
    std::optional<std::string> report;       ///< a page to look at
    std::optional<std::string> viewerScript; ///< opens map and models in ChimeraX or PyMOL
    int models = 0;
    std::string modelPrefix;
    bool quiet = false;
    int threads = 1;
    std::string command; ///< the command line that asks for the same; the report shows it
};

} // namespace hosts
