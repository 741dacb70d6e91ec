#pragma once

#include <optional>
#include <string>
#include <vector>

namespace hosts {

constexpr int maxAxis = 99; ///< the largest number that the set-up dialog's field takes
constexpr int maxThreads = 1024;

/// What a fit is asked to do.
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
    double inclusionDistance = 0; ///< Å

    std::optional<std::string> results;
    std::optional<std::string> log;
    std::optional<std::string> json;
    std::optional<std::string> report;       ///< a page to look at
    std::optional<std::string> viewerScript; ///< opens map and models in ChimeraX or PyMOL
    int models = 0;
    std::string modelPrefix;
    bool quiet = false;
    bool force = false;
    int threads = 1;     ///< that score poses
    std::string command; ///< the command line that asks for the same; the report shows it
};

/// Throws ParameterError for a number that no fit can be run with, or that the engine, which has positions in
/// single precision, would take for another one, and for the name of a file that cannot be opened. The engine
/// judges the rotation step, together with what the fit would take.
void CheckFitOptions(const FitOptions &options);

} // namespace hosts
