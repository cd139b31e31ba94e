#ifndef ORVALANGUAGE_TESTS_SUPPORT_CLOSEONEXEC_H
#define ORVALANGUAGE_TESTS_SUPPORT_CLOSEONEXEC_H

#include <fcntl.h>

// Keeps both ends of a pipe or a pair of sockets from the programs that are started.
inline void CloseOnExec(const int (&ends)[2]) {
    for (const int end : ends) {
        fcntl(end, F_SETFD, FD_CLOEXEC);
    }
}

#endif
