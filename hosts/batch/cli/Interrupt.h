#pragma once

namespace cli {

/// Ctrl-C during a fit.

/// From now on the first Ctrl-C is noted and answered with a line on standard error; the second ends the
/// process, as Ctrl-C does by default. Where the process was started to ignore it (in the background of a
/// script), it goes on doing so.
void CatchInterrupt();
/// Whether there was a first one.
bool WasInterrupted();

} // namespace cli
