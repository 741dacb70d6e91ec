#pragma once

#include "cli/Command.h"

namespace batch {

/// Every subcommand, in the order in which the help lists them.
const std::vector<cli::Command> &AllCommands();

// Each is defined in the file of its name.
cli::Command PlaceCommand();
cli::Command FitCommand();
cli::Command InfoCommand();
cli::Command BuildCommand();
cli::Command SimulateCommand();
cli::Command ScreenCommand();
cli::Command ScreenExportCommand();

} // namespace batch
