#pragma once

#include <string>

namespace cli {

/// What the program says on standard error.

/// The name that stands before every message, "morvanex" until a subcommand runs.
void SetProgramName(const std::string &name);

/// "morvanex fit: ...", a line of its own. Control characters of the text are escaped.
void Tell(const std::string &text);
/// "morvanex fit: warning: ...", a line of its own.
void Warn(const std::string &text);
/// "morvanex fit: error: ...", a line of its own.
void ReportError(const std::string &text);

/// From now on what goes to the toolkit's warning channel is such a warning; its debug channel, on which the
/// engine tells of its steps, is silent.
void CatchToolkitMessages();

} // namespace cli
