#pragma once

#include <csignal>

namespace hosts {

/// While it lives, the signals that would end the process wait: a file is written whole or not at all, also
/// by an impatient user.
class SignalHold {
public:
    SignalHold();
    SignalHold(const SignalHold &) = delete;
    SignalHold &operator=(const SignalHold &) = delete;
    ~SignalHold();

private:
    sigset_t m_before;
};

} // namespace hosts
