#pragma once

#include "hosts/common/PlaceOptions.h"

#include <functional>

namespace hosts {

/// Which options of a placement were given, by the names of the command line without dashes: "near".
struct GivenOptions {
    std::function<bool(const std::string &)> has;
    std::function<std::string(const std::string &)> nameOf; ///< what the user calls an option: "--near"
};

/// What a placement places.
enum class Placed {
    OneModel,        ///< in one place after the other
    SymmetricCopies, ///< of one model, as an assembly
    Assembly,        ///< copies or several models
};

/// Refuses options that exclude one another or are not for what is placed. Throws std::runtime_error.
void CheckCombination(const GivenOptions &given, Placed what);

/// Refuses a model that is given twice. Throws ParameterError.
void CheckParts(const std::vector<PartOptions> &parts);

} // namespace hosts
