#pragma once

#include "cli/CommandLine.h"
#include "hosts/common/PlaceOptions.h"

namespace batch {

/// The options of `morvanex place` for the help and the parser.
std::vector<cli::Option> PlaceOptionTable();

/// The command line. Throws std::runtime_error, naming option and value, for a number that makes no sense.
hosts::PlaceOptions ReadPlaceOptions(const cli::Arguments &arguments);

} // namespace batch
