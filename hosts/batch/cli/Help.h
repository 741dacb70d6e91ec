#pragma once

#include "cli/Command.h"

namespace cli {

/// Texts made from the table of commands: each explanation is written once.

/// What `morvanex --help` shows.
std::string ProgramHelp(const std::vector<Command> &commands);
/// What `morvanex COMMAND --help` shows: usage, description, every option with its unit and its default.
std::string CommandHelp(const Command &command);
/// The manual page of the program with all its subcommands, in man(7) macros.
std::string ManualPage(const std::vector<Command> &commands);

} // namespace cli
