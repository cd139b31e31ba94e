// What a destroyed key leaves in memory.
#include <algorithm>
#include <iterator>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "tests/support/FailingAllocation.h"
#include "tools/orva-strings/protection/MasterKey.h"

namespace {

const char kDigits[] = "0123456789ABCDEF0123456789ABCDEF0123456789ABCDEF0123456789ABCDEF";

TEST(KeyCleared, ClearsItsBytesWhenDestroyed) {
    alignas(MasterKey) unsigned char memory[sizeof(MasterKey)] = {};
    const auto isZero = [](unsigned char byte) { return byte == 0; };
    const MasterKey* const key = new (memory) MasterKey(MasterKey::FromText(kDigits, "key"));
    ASSERT_FALSE(std::all_of(std::begin(memory), std::end(memory), isZero));
    key->~MasterKey();
    // To the compiler, what a destroyed object leaves has no value.
    __asm__ volatile("" : "+m"(memory));
    EXPECT_TRUE(std::all_of(std::begin(memory), std::end(memory), isZero));
}

TEST(KeyCleared, ClearsTheTextThatItIsMadeOf) {
    for (const char* const after : {"", "\n", "\r\n", "0"}) {  // the last one is a digit too many
        const FreedMemoryWatch watch(kDigits, sizeof kDigits - 1);
        std::string text;
        text.reserve(100);  // so that it does not move as it grows
        text += kDigits;
        text += after;
        try {
            MasterKey::FromText(std::move(text), "key");
        } catch (const std::runtime_error&) {
        }
        EXPECT_GT(FreedMemoryWatch::Blocks(), 0U);
        EXPECT_FALSE(FreedMemoryWatch::HasSeen()) << '"' << after << '"';
    }
}

TEST(KeyCleared, ClearsTheDigitsThatItsFingerprintIsMadeOf) {
    const MasterKey key = MasterKey::FromText(kDigits, "key");
    const FreedMemoryWatch watch(kDigits, sizeof kDigits - 1);
    EXPECT_EQ(key.Fingerprint().size(), MasterKey::kFingerprint);
    EXPECT_GT(FreedMemoryWatch::Blocks(), 0U);
    EXPECT_FALSE(FreedMemoryWatch::HasSeen());
}

}  // namespace
