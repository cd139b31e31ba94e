#ifndef ORVALANGUAGE_TOOLS_SYSTEM_SIGNALBLOCK_H
#define ORVALANGUAGE_TOOLS_SYSTEM_SIGNALBLOCK_H

#include <csignal>

// While it lives, blocks every signal that can be blocked: one that ended the process would leave
// an unfinished file.
class SignalBlock {
public:
    SignalBlock() noexcept {
        sigset_t all;
        sigfillset(&all);
        for (const int fault : {SIGBUS, SIGFPE, SIGILL, SIGSEGV}) {
            sigdelset(&all, fault);  // undefined while blocked
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
