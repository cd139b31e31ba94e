#ifndef ORVALANGUAGE_TESTS_SUPPORT_PROCESSMEMORY_H
#define ORVALANGUAGE_TESTS_SUPPORT_PROCESSMEMORY_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Hex.h"

#ifdef __has_feature
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define ORVA_MEMORY_IS_SHADOWED 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ORVA_MEMORY_IS_SHADOWED 1
#endif

// Looks for secrets in all that the process can write to: static objects, the heap with its freed
// blocks, stacks with what returned calls have left there.
//
// What it looks for must not be there because of the search. So a process of its own makes the
// secrets, this one gets them with some bits of each byte turned, and from then on until the end of
// a search nothing is allocated, since that could overwrite what a freed block holds. The search has
// its own part of the stack, far below what its caller's calls have left there.
class MemorySearch {
public:
    using Secrets = std::vector<std::pair<const char*, Bytes>>;
    using Hits = std::map<std::string, std::size_t>;

    // Has a process of its own make the secrets, each with a name for it, and what else make does.
    // Adds to a failure of the test if it throws.
    void LookFor(const std::function<Secrets()>& make);

    // "SECRET in PLACE", and how many parts of the secret, of eight bytes each, are found there.
    Hits Found() const;

private:
    struct Part {
        char name[40];
        std::uint64_t masked;
    };

    // The number of hits, which it keeps elsewhere.
    std::size_t Search() const;

    std::array<Part, 1024> m_parts;
    std::size_t m_count = 0;
};

// Calls a function in a thread of its own, and then look while the thread still has its stack, which
// the system takes back when it ends.
void CallInThread(const std::function<void()>& call, const std::function<void()>& look);

#endif
