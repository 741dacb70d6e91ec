#pragma once

#include "cli/Command.h"

namespace cli {

/// The whole program except its process: `words` is the command line without the program's own name. Results
/// go to standard output, diagnostics to standard error; returns the exit status. Nothing is thrown: errors
/// of every kind end here, as one message.
int RunProgram(const std::vector<Command> &commands, const std::vector<std::string> &words);

} // namespace cli
