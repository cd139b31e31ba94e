#ifndef ORVALANGUAGE_FUZZ_CHECK_H
#define ORVALANGUAGE_FUZZ_CHECK_H

#include <cstdio>
#include <cstdlib>

// Ends the run unless the promise holds. The fuzzer then keeps the input.
inline void Check(bool holds, const char* promise) {
    if (!holds) {
        std::fprintf(stderr, "broken: %s\n", promise);
        std::abort();
    }
}

#endif
