#pragma once

#include "cli/CommandLine.h"
#include "hosts/common/FitOptions.h"
#include "hosts/common/WarningSink.h"

namespace batch {

/// The options of `morvanex fit` for the help and the parser.
std::vector<cli::Option> FitOptionTable();

/// The command line; what it leaves open comes from section "Morvanex" of the configuration, converted as the
/// set-up dialog converts its fields: what is not a number counts as 0, with a warning to `warn`.
hosts::FitOptions ReadFitOptions(const cli::Arguments &arguments, const hosts::WarningSink &warn);

} // namespace batch
