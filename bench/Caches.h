#ifndef ORVALANGUAGE_BENCH_CACHES_H
#define ORVALANGUAGE_BENCH_CACHES_H

#include <algorithm>
#include <cstddef>
#include <vector>

#include <benchmark/benchmark.h>

// Pushes everything out of the processor's caches, as other work does between two uses of a table:
// writes to twice as much memory as the largest cache holds. If the system does not tell how much
// that is, 64 MiB are enough for most.
inline void EvictCaches() {
    constexpr std::size_t kLine = 64;
    static std::vector<unsigned char> memory = [] {
        std::size_t largest = 0;
        for (const benchmark::CPUInfo::CacheInfo& cache : benchmark::CPUInfo::Get().caches) {
            largest = std::max(largest, static_cast<std::size_t>(cache.size));
        }
        constexpr std::size_t kMiB = 1 << 20;
        return std::vector<unsigned char>(std::clamp(2 * largest, 64 * kMiB, 256 * kMiB));
    }();
    for (std::size_t i = 0; i < memory.size(); i += kLine) {
        ++memory[i];
    }
    benchmark::ClobberMemory();
}

#endif
