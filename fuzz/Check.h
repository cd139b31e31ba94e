#ifndef ORVALANGUAGE_FUZZ_CHECK_H
#define ORVALANGUAGE_FUZZ_CHECK_H

#include <cstdio>
#include <cstdlib>

// Ends the run, which keeps the input, unless what is promised holds.
inline void Check(bool holds, const char* promise) {
    if (!holds) {
        std::fprintf(stderr, "broken: %s\n", promise);
        std::abort();
    }
}

#endif
