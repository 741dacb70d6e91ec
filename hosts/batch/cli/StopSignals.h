#pragma once

#include <string>

namespace cli {

/// While one lives, the signals that ask a long piece of work to stop (Ctrl-C, and SIGTERM and SIGHUP as a
/// batch system or a closed terminal sends them) do not end the process: the first is noted and answered with
/// a line on standard error, a second one ends the process at once. Signals that the process was started to
/// ignore stay ignored. Only one may live at a time.
class StopSignals {
public:
    /// `step` names what the work finishes before it stops, "the current axis"; the text must live as long as
    /// the program.
    explicit StopSignals(const char *step);
    StopSignals(const StopSignals &) = delete;
    StopSignals &operator=(const StopSignals &) = delete;
    ~StopSignals();

    /// The next step has begun; its end is not known.
    void EnterStep(const char *step);
};

/// The number of the signal that was noted, also after the end of the `StopSignals`; 0 when there was none.
int StopSignal();

/// "Ctrl-C", "SIGTERM" or "SIGHUP".
std::string SignalName(int signal);

/// The current step ends within about `seconds` from now: the line on standard error says so. Negative: not
/// known.
void ExpectEndOfStep(double seconds);

} // namespace cli
