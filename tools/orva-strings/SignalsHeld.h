#ifndef ORVALANGUAGE_TOOLS_SIGNALSHELD_H
#define ORVALANGUAGE_TOOLS_SIGNALSHELD_H

#include <csignal>

// Holds back every signal that can be, until the end of its scope: one that ended the process in
// between would leave a file behind that is not finished.
class SignalsHeld {
public:
    SignalsHeld() noexcept {
        sigset_t all;
        sigfillset(&all);
        for (const int fault : {SIGBUS, SIGFPE, SIGILL, SIGSEGV}) {
            sigdelset(&all, fault);  // undefined while held back
        }
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    ~SignalsHeld() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;

private:
    sigset_t m_before;
};

#endif
