#pragma once

#include "cli/Command.h"

namespace cli {

/// What shells complete on a command line, made from the table of commands: names of commands and options,
/// and file names where an option or the operand takes one.

/// A script that bash-completion loads by the program's name.
std::string BashCompletion(const std::vector<Command> &commands);
/// A script for a folder of zsh's `fpath`, where it is named "_morvanex".
std::string ZshCompletion(const std::vector<Command> &commands);

} // namespace cli
