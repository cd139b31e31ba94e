#ifndef ORVALANGUAGE_TOOLS_SYSTEM_SIGNALBLOCK_H
#define ORVALANGUAGE_TOOLS_SYSTEM_SIGNALBLOCK_H

#include <csignal>

// Holds back every signal that can be, until the end of its scope: one that ended the process in
// between would leave a file behind that is not finished.
class SignalBlock {
public:
    SignalBlock() noexcept {
        sigset_t all;
        sigfillset(&all);
        for (const int fault : {SIGBUS, SIGFPE, SIGILL, SIGSEGV}) {
            sigdelset(&all, fault);  // undefined while held back
        }
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    ~SignalBlock() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SignalBlock(const SignalBlock&) = delete;
    SignalBlock& operator=(const SignalBlock&) = delete;

private:
    sigset_t m_before;
};

#endif
