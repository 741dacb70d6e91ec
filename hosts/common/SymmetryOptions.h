#pragma once

#include "hosts/common/WarningSink.h"

#include "placement/MapSymmetry.h"

#include <span>
#include <string>

namespace hosts {

/// Which symmetry `place` looks for.
struct SymmetryOptions {
    placement::SymmetryRequest request; ///< with what is asked for and held
    std::optional<std::string> file;    ///< mmCIF whose first assembly tells symmetry and frame
};

/// "auto", nothing, "H", a helix of the rise 0, or a symmetry by its name (see placement::ReadSymmetry).
/// Throws ParameterError.
std::optional<placement::Symmetry> ReadAskedSymmetry(const std::string &text);

/// What the options ask for, the file read. The operators are those of a file's own coordinates, which have
/// to be the map's. Throws FileError, also for operators that make no group and no helix.
placement::SymmetryRequest ReadSymmetryRequest(const SymmetryOptions &options);

} // namespace hosts
