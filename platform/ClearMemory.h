#ifndef ORVALANGUAGE_PLATFORM_CLEARMEMORY_H
#define ORVALANGUAGE_PLATFORM_CLEARMEMORY_H

#include <cstddef>
#include <strings.h>

// Fills memory with zero bytes, also where the compiler can see that nobody reads it any more: it
// must assume that the empty statement does. Length in bytes; null with a length of 0 is fine.
inline void ClearMemory(void* memory, std::size_t length) noexcept {
    bzero(memory, length);
    __asm__ __volatile__("" : : "r"(memory) : "memory");
}

#endif
