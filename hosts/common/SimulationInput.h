#pragma once

#include "hosts/common/Bend.h"
#include "hosts/common/Inputs.h"
#include "hosts/common/Simulation.h"

namespace hosts {

constexpr double maxBend = 100; ///< Å

/// What `simulate` is asked to do.
struct SimulationOptions {
    std::string model;
    std::optional<std::vector<std::string>> chains; ///< identifiers; not set: all polymer chains
    SimulationSettings settings;
    double bend = 0; ///< root mean square by which the model is deformed, Å
    std::optional<std::string> bentModel;
    std::optional<std::string> out;
};

/// Throws std::runtime_error, naming the option, for numbers with which no map can be made. `warn` hears of
/// voxels too large for what they are to hold.
void CheckSimulationOptions(const SimulationOptions &options, const WarningSink &warn);

/// Throws FileError for an output that cannot be written, that is an input or that is another output. Changes
/// nothing.
void CheckSimulationOutputs(const SimulationOptions &options);

/// The model of a simulation.
struct SimulationInput {
    std::vector<VARNO::Chain *> chains;
    std::vector<Scatterer> scatterers; ///< of the chains, bent
    std::optional<Bend> bend;
    SimulationBox box;
};

/// Reads the model. `warn` hears of what is left out. Throws FileError, also where no map can be made of it.
SimulationInput ReadSimulationInput(const SimulationOptions &options, const WarningSink &warn,
                                    InputSource &source = InputFiles());

/// What the map is, for its header; that has room for 80 characters of plain text.
std::string SimulationTitle(const SimulationOptions &options);

/// Writes the model as it was bent, in the format that the name asks for. Throws FileError.
void WriteBentModel(const std::string &file, const SimulationInput &input);

} // namespace hosts
