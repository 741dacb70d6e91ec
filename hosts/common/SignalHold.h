#pragma once

#include <csignal>

namespace hosts {

/// While it lives, the signals that would end the process wait, so that a file is written whole or not at
/// all, however impatient the user.
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
