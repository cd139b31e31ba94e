#ifndef ORVALANGUAGE_CLEARING_CLEAREDARRAY_H
#define ORVALANGUAGE_CLEARING_CLEAREDARRAY_H

#include <cstddef>
#include <cstdint>

#include "clearing/ClearMemory.h"

// An owned array for bytes that must not be left in memory: cleared before it is freed,
// uninitialised at first. Throws std::bad_alloc if memory runs out.
class ClearedArray {
public:
    explicit ClearedArray(std::size_t size) : m_bytes(new std::uint8_t[size]), m_size(size) {}
    ~ClearedArray() {
        ClearMemory(m_bytes, m_size);
        delete[] m_bytes;
    }
    ClearedArray(const ClearedArray&) = delete;
    ClearedArray& operator=(const ClearedArray&) = delete;

    std::uint8_t* Get() const noexcept { return m_bytes; }
    std::size_t Size() const noexcept { return m_size; }

private:
    std::uint8_t* m_bytes;
    std::size_t m_size;
};

#endif
