#ifndef ORVALANGUAGE_CLEARING_CLEARMEMORY_H
#define ORVALANGUAGE_CLEARING_CLEARMEMORY_H

#include <cstddef>
#include <strings.h>

// Zeroes memory even if the stores look dead: the empty asm counts as a read. Length in bytes; null
// is allowed with a length of 0.
inline void ClearMemory(void* memory, std::size_t length) noexcept {
    bzero(memory, length);
    __asm__ __volatile__("" : : "r"(memory) : "memory");
}

#endif
