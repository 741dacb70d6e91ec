#pragma once

#include <string>

namespace cli {

/// What the program says on standard error.

/// The name that stands before every message, "morvanex" until a subcommand runs.
void SetProgramName(const std::string &name);

/// Prints "morvanex fit: ...", a line of its own. Control characters of the text are escaped.
void Print(const std::string &text);
/// Prints "morvanex fit: warning: ...".
void Warn(const std::string &text);
/// Prints "morvanex fit: error: ...".
void ReportError(const std::string &text);

/// From now on messages of the toolkit's warning channel are printed as warnings; its debug channel, on which
/// the engine reports its steps, is silent.
void CatchToolkitMessages();

} // namespace cli
