#include "hosts/common/SignalHold.h"

#include <initializer_list>

namespace hosts {

SignalHold::SignalHold() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&signals, signal);
    pthread_sigmask(SIG_BLOCK, &signals, &m_before);
}

SignalHold::~SignalHold() {
    pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}

} // namespace hosts
