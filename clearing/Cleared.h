#ifndef ORVALANGUAGE_CLEARING_CLEARED_H
#define ORVALANGUAGE_CLEARING_CLEARED_H

#include <type_traits>

#include "clearing/ClearMemory.h"

// A value that must not be left in memory: cleared when destroyed. Uninitialised unless it is given
// an initialiser. ClearedArray is the same for bytes whose number is known only at run time.
template <typename Value>
struct Cleared {
    static_assert(std::is_trivially_copyable_v<Value>, "it must hold its bytes itself");

    Cleared() = default;
    Cleared(const Cleared&) = default;
    Cleared& operator=(const Cleared&) = default;
    ~Cleared() { ClearMemory(&value, sizeof value); }

    Value value;
};

#endif
