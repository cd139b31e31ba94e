#ifndef ORVALANGUAGE_TOOLS_SIGNALSHELD_H
#define ORVALANGUAGE_TOOLS_SIGNALSHELD_H

#include <csignal>

// Holds back the signals by which a user or the system ends a command, until the end of its scope:
// one that came in between would leave a file behind that is not finished.
class SignalsHeld {
public:
    SignalsHeld() noexcept {
        sigset_t ending;
        sigemptyset(&ending);
        sigaddset(&ending, SIGHUP);
        sigaddset(&ending, SIGINT);
        sigaddset(&ending, SIGTERM);
        pthread_sigmask(SIG_BLOCK, &ending, &m_before);
    }
    ~SignalsHeld() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;

private:
    sigset_t m_before;
};

#endif
