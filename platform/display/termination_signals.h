#pragma once

#include <csignal>

namespace platform {

// The signals that ask a process to end, as a set.
inline sigset_t TerminationSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        sigaddset(&signals, signal);
    }
    return signals;
}

// Lets `handler` handle them, but for those that whoever started the process had it ignore.
inline void HandleTerminationSignals(void (*handler)(int)) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        struct sigaction action = {};
        sigaction(signal, nullptr, &action);
        if (action.sa_handler != SIG_IGN) {
            action.sa_handler = handler;
            action.sa_flags = SA_RESTART;
            sigaction(signal, &action, nullptr);
        }
    }
}

}  // namespace platform
