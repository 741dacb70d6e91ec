#pragma once

#include <optional>
#include <string>
#include <vector>

namespace hosts {

/// What `place` is asked to do.
struct PlaceOptions {
    std::string map;
    std::string model;
    double resolution = 0;                          ///< Å
    std::optional<std::vector<std::string>> chains; ///< identifiers; not set: all polymer chains
    std::optional<double> minPlddt; ///< residues of less confidence are left out of the search

    std::optional<std::string> results;
    std::optional<std::string> json;
    int models = 0;
    std::string modelPrefix;
    bool quiet = false;
    int threads = 1;
};

} // namespace hosts
