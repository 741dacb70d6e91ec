#pragma once

#include "cli/CommandLine.h"
#include "hosts/common/SimulationInput.h"

namespace batch {

/// The options of `morvanex simulate` for the help and the parser.
std::vector<cli::Option> SimulateOptionTable();

/// The command line. Throws std::runtime_error, naming the option, for numbers with which no map can be made.
hosts::SimulationOptions ReadSimulateOptions(const cli::Arguments &arguments, const hosts::WarningSink &warn);

} // namespace batch
