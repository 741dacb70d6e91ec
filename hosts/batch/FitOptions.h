#pragma once

#include "CommandLine.h"

#include <optional>

namespace Batch {

/// What a fit is asked to do: the command line over the configuration.
struct FitOptions {
    std::string map;
    std::string target;
    std::optional<std::string>
        chain; ///< identifier; blank for a chain without one; not set: the first polymer
    std::vector<std::string> solids;
    std::optional<std::vector<std::string>> solidChains; ///< not set: all polymer chains, less the target
    std::optional<std::string> restraints;

    int axis = 0;               ///< depth of the subdivision that gives the rotation axes
    double rotationStep = 0;    ///< degrees
    double translationStep = 0; ///< Å
    int translationSteps = 0;   ///< along each direction
    int keep = 0;
    std::string inclusionDistance; ///< Å, as text: the engine reads it from the configuration

    std::optional<std::string> results;
    std::optional<std::string> log;
    std::optional<std::string> json;
    int models = 0;
    std::string modelPrefix;
    bool quiet = false;
    bool force = false;
    int threads = 1; ///< that score poses
};

/// The options of `morvanex fit` for the help and the parser.
std::vector<Option> FitOptionTable();

/// The command line, and what it leaves open from section "Morvanex" of the configuration, converted as the
/// set-up dialog converts its fields: what is no number is 0.
FitOptions ReadFitOptions(const Arguments &arguments);

/// Throws std::runtime_error, naming option and value, for a number that no fit can be run with. A rotation
/// step is not looked at: the engine judges that together with what the fit would take.
void CheckFitOptions(const FitOptions &options);

} // namespace Batch
