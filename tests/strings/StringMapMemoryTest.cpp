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
    // Adds an entry of this many bytes, an even number. Returns the size of the first block
    // that this made the map ask for, or 0 if it asked for none.
    std::size_t Insert(std::size_t bytes) {
        // The lengths of both texts in two bytes each, the texts, and a NUL after each.
        const std::string key = std::to_string(100'000 + m_map.Size());
        const std::string value(bytes - 4 - key.size() - 2, 'v');
        const FailingAllocation counting(0);
        EXPECT_TRUE(m_map.Insert(key, value));
        return FailingAllocation::SizeOfFirst();
    }

    static constexpr std::size_t kSmall = 32;
    static constexpr std::size_t kGroup = 64;  // eight slots of the index

    StringMap m_map;
};

TEST_F(StringMapMemory, ComesInBlocksThatDouble) {
    // This is the index; a block of 4 KB follows.
    EXPECT_EQ(Insert(kSmall), 32 * kGroup);
    EXPECT_EQ(Insert(4096 - kSmall), 0U);
    for (const std::size_t block : {8192U, 16384U}) {
        EXPECT_EQ(Insert(kSmall), block);
        EXPECT_EQ(Insert(block - kSmall), 0U) << "what is left of " << block;
    }
    EXPECT_EQ(Insert(16384), 32768U);
    EXPECT_EQ(Insert(16384), 0U);
    for (int i = 0; i < 2; ++i) {  // the largest size
        EXPECT_EQ(Insert(16384), 65536U);
        EXPECT_EQ(Insert(16384), 0U);
        EXPECT_EQ(Insert(16384), 0U);
        EXPECT_EQ(Insert(16384 - kSmall), 0U);
        // A large entry does not use up the last block's free bytes.
        EXPECT_EQ(Insert(16384 + 2), 16384U + 2);
        EXPECT_EQ(Insert(kSmall), 0U);
    }
}

TEST_F(StringMapMemory, OfALargeEntryMayBeTheFirstBlock) {
    m_map.Insert("large", std::string(20'000, 'v'));
    const std::size_t size = 4 + 5 + 20'000 + 2 + 1;  // the last byte for the alignment
    EXPECT_EQ(Insert(kSmall), 2 * size) << "twice the last one's";
    EXPECT_EQ(m_map.end() - m_map.begin(), 2);
}

// The lengths of a text of 65,535 bytes or more take another 16 bytes.
TEST_F(StringMapMemory, HoldsTheLengthsOfLongTexts) {
    for (const std::size_t key : {20'000U, 65'534U, 65'535U}) {
        for (const std::size_t value : {20'000U, 65'534U, 65'535U}) {
            const bool isLong = key == 65'535U || value == 65'535U;
            StringMap map;
            map.Insert("", "");
            const std::string keyText(key, 'k');
            const std::string valueText(value, 'v');
            const FailingAllocation counting(0);
            map.Insert(keyText, valueText);
            EXPECT_EQ(FailingAllocation::SizeOfFirst(),
                      (4 + (isLong ? 16 : 0) + key + value + 2 + 1) / 2 * 2)
                << key << ' ' << value;
        }
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
    // First, entries away from the keys' groups, so that the index need not grow for the keys.
    constexpr std::size_t kGroups = 128;
    for (int i = 0; m_map.Size() < 5 * kGroups / 2 + 1; ++i) {
        const std::string key = "another key " + std::to_string(i);
        if ((StringMap::Hash(key) - StringMap::Hash(keys[0]) + 32) % kGroups >= 64) {
            m_map.Insert(key, "");
        }
    }
    // Their second block has room for the keys.
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const FailingAllocation counting(0);
        m_map.Insert(keys[i], "");
        EXPECT_EQ(FailingAllocation::SizeOfFirst() != 0, i == 64) << i;
    }
}

TEST_F(StringMapMemory, GrowsItsIndexWhenFiveEighthsOfItAreTaken) {
    constexpr std::size_t kTiny = 12;  // the first block holds 341 of them
    EXPECT_EQ(Insert(kTiny), 32 * kGroup);
    for (std::size_t entries = 1; entries < 341; ++entries) {
        EXPECT_EQ(Insert(kTiny), entries == 160   ? 64 * kGroup
                                 : entries == 320 ? 128 * kGroup
                                                  : 0)
            << entries;
    }
}

}  // namespace
