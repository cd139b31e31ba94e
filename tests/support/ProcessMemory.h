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

// Searches all writable memory of the process for secrets: static objects, the heap with its freed
// blocks, and what returned calls left on stacks.
//
// The search itself must not put the secrets there. So another process makes them, and this one
// receives them masked, with some bits of each byte flipped. From then until a search ends nothing
// is allocated, since that could overwrite freed blocks. The search uses a part of the stack far
// below what its caller's calls left there.
class MemorySearch {
public:
    using Secrets = std::vector<std::pair<const char*, Bytes>>;
    using Hits = std::map<std::string, std::size_t>;

    // Runs make in another process; it returns the secrets, each with a name. Fails the test if
    // make throws.
    void LookFor(const std::function<Secrets()>& make);

    // "SECRET in PLACE", and how many eight-byte parts of the secret were found there.
    Hits Found() const;

private:
    struct Part {
        char name[40];
        std::uint64_t masked;
    };

    // Returns the number of hits, which are kept elsewhere.
    std::size_t Search() const;

    std::array<Part, 1024> m_parts;
    std::size_t m_count = 0;
};

// Calls a function in a thread of its own, then look while the thread still has its stack. The
// system takes the stack back when the thread ends.
void CallInThread(const std::function<void()>& call, const std::function<void()>& look);

#endif
