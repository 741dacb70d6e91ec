#pragma once

#include <csignal>

namespace Batch {

/// Ctrl-C during a fit.

/// From now on the first Ctrl-C is noted and answered with a line on standard error; the second ends the
/// process, as Ctrl-C does by default. Where the process was started to ignore it (in the background of a
/// script), it goes on doing so.
void CatchInterrupt();
/// Whether there was a first one.
bool WasInterrupted();

/// While it lives, signals that would end the process wait: a file is written whole or not at all, also by an
/// impatient user.
class SignalHold {
public:
    SignalHold();
    SignalHold(const SignalHold &) = delete;
    SignalHold &operator=(const SignalHold &) = delete;
    ~SignalHold();

private:
    sigset_t m_before;
};

} // namespace Batch
