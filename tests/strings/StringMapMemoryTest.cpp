// How much memory a map asks for, and when: few large blocks, filled to the last byte.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "strings/StringMap.h"
#include "tests/support/FailingAllocation.h"
#include "tests/support/KeysOfOneHash.h"

namespace {

class StringMapMemory : public ::testing::Test {
protected:
    // Adds an entry of this many bytes, a multiple of eight. Returns the size of the first block
    // that this made the map ask for, or 0 if it asked for none.
    std::size_t Insert(std::size_t bytes) {
        // The lengths of both texts, the texts, and a NUL after each.
        const std::string key = std::to_string(100'000 + m_map.Size());
        const std::string value(bytes - 2 * sizeof(std::size_t) - key.size() - 2, 'v');
        const FailingAllocation counting(0);
        EXPECT_TRUE(m_map.Insert(key, value));
        return FailingAllocation::SizeOfFirst();
    }

    static constexpr std::size_t kSmall = 32;
    static constexpr std::size_t kSlot = 16;

    StringMap m_map;
};

TEST_F(StringMapMemory, ComesInBlocksThatDouble) {
    // This is the index; a block of 4 KB follows.
    EXPECT_EQ(Insert(kSmall), 64 * kSlot);
    EXPECT_EQ(Insert(4096 - kSmall), 0U);
    for (const std::size_t block : {8192U, 16384U, 32768U, 65536U}) {
        EXPECT_EQ(Insert(kSmall), block);
        EXPECT_EQ(Insert(block - kSmall), 0U) << "what is left of " << block;
    }
    EXPECT_EQ(Insert(65536), 131072U);
    EXPECT_EQ(Insert(65536), 0U);
    for (int i = 0; i < 2; ++i) {  // the largest size
        EXPECT_EQ(Insert(65536), 262144U);
        EXPECT_EQ(Insert(65536), 0U);
        EXPECT_EQ(Insert(65536), 0U);
        EXPECT_EQ(Insert(65536 - kSmall), 0U);
        // A large entry does not use up the last block's free bytes.
        EXPECT_EQ(Insert(65536 + 8), 65536U + 8);
        EXPECT_EQ(Insert(kSmall), 0U);
    }
}

TEST_F(StringMapMemory, IsAskedForOnceToOrderTheEntriesAfterAChange) {
    for (int i = 0; i < 10; ++i) {
        Insert(kSmall);
    }
    for (int walk = 0; walk < 2; ++walk) {
        const FailingAllocation failing(walk == 0 ? 2 : 1);
        EXPECT_EQ(m_map.end() - m_map.begin(), 10);
        EXPECT_EQ(FailingAllocation::SizeOfFirst(), walk == 0 ? 10 * sizeof(void*) : 0U);
    }
    Insert(kSmall);
    const FailingAllocation failing(1);
    EXPECT_THROW(m_map.begin(), std::bad_alloc) << "sorted anew after a change";
}

TEST_F(StringMapMemory, IsGivenBackWithTheEntries) {
    const std::size_t before = LiveAllocations();
    {
        StringMap map;
        for (int round = 0; round < 2; ++round) {
            map.Insert("key", "value");
            EXPECT_EQ(map.end() - map.begin(), 1);
            EXPECT_GT(LiveAllocations(), before);
            map.Clear();
            EXPECT_EQ(LiveAllocations(), before) << "the order's, too";
        }
        map.Insert("key", "value");
        EXPECT_EQ(map.end() - map.begin(), 1);
    }
    EXPECT_EQ(LiveAllocations(), before);
}

TEST_F(StringMapMemory, IsAskedForByTheSixtyFifthKeyOfOneHash) {
    const std::vector<std::string> keys = KeysOfOneHash(65);
    // First, entries away from the keys' slots, so that the index need not grow for the keys.
    constexpr std::size_t kSlots = 512;
    for (int i = 0; m_map.Size() < kSlots / 4 + 1; ++i) {
        const std::string key = "another key " + std::to_string(i);
        if ((StringMap::Hash(key) - StringMap::Hash(keys[0]) + 64) % kSlots >= 192) {
            m_map.Insert(key, "");
        }
    }
    m_map.Insert("a large block, filled", std::string(60'000, 'v'));
    m_map.Insert("one of twice the size", "");
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const FailingAllocation counting(0);
        m_map.Insert(keys[i], "");
        EXPECT_EQ(FailingAllocation::SizeOfFirst() != 0, i == 64) << i;
    }
}

TEST_F(StringMapMemory, GrowsItsIndexWhenHalfOfItIsTaken) {
    EXPECT_EQ(Insert(kSmall), 64 * kSlot);
    for (std::size_t entries = 1; entries < 128; ++entries) {
        EXPECT_EQ(Insert(kSmall), entries == 32 || entries == 64 ? 4 * entries * kSlot : 0)
            << entries;
    }
    EXPECT_EQ(Insert(kSmall), 512 * kSlot);
}

}  // namespace
