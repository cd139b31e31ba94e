#ifndef ORVALANGUAGE_TESTS_SUPPORT_KEYSOFONEHASH_H
#define ORVALANGUAGE_TESTS_SUPPORT_KEYSOFONEHASH_H

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "strings/StringMap.h"

// Keys of 40 bytes that all have the same nonzero hash: their first eight bytes make the hash
// multiply the following ones by zero.
inline std::vector<std::string> KeysOfOneHash(std::uint64_t count) {
    const std::uint64_t zeroing = 0x9E3779B97F4A7C15;
    const std::string front(reinterpret_cast<const char*>(&zeroing), sizeof zeroing);
    std::vector<std::string> keys;
    for (std::uint64_t i = 0; i < count; ++i) {
        keys.push_back(front + std::string(reinterpret_cast<const char*>(&i), sizeof i) +
                       "the same 24 bytes follow");
        EXPECT_EQ(StringMap::Hash(keys.back()), StringMap::Hash(keys.front()));
    }
    EXPECT_NE(StringMap::Hash(keys.front()), 0U);
    return keys;
}

#endif
