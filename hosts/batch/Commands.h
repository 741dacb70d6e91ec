#pragma once

#include "Command.h"

namespace Batch {

/// Every subcommand, in the order in which the help lists them.
const std::vector<Command> &AllCommands();

// Each is defined in the file of its name.
Command FitCommand();
Command InfoCommand();
Command BuildCommand();
Command SimulateCommand();

} // namespace Batch
