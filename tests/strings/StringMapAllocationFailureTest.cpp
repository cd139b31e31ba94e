// Every allocation of an insertion fails once; the map is then unchanged, and takes the same entry
// the next time.
#include <new>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "strings/StringMap.h"
#include "tests/support/FailingAllocation.h"
#include "tests/support/KeysOfOneHash.h"

namespace {

// Inserts each key after failing each of its allocations. Returns the number of failures.
std::size_t InsertWithFailures(const std::vector<std::string>& keys) {
    std::size_t failures = 0;
    StringMap map;
    std::vector<const char*> texts;
    for (const std::string& key : keys) {
        bool isInserted = false;
        for (std::size_t n = 1; !isInserted; ++n) {
            const std::size_t size = map.Size();
            try {
                const FailingAllocation failing(n);
                isInserted = map.Insert(key, key);
            } catch (const std::bad_alloc&) {
                ++failures;
                EXPECT_EQ(map.Size(), size);
                EXPECT_EQ(map.Find(key), nullptr);
                for (const StringMap::Entry* entry : map) {
                    EXPECT_NE(entry->Key(), key);
                }
            }
        }
        EXPECT_NE(map.Find(key), nullptr) << key;
        texts.push_back(map.Find(key)->Value().data());
    }
    for (std::size_t i = 0; i < keys.size(); ++i) {
        EXPECT_EQ(map.Find(keys[i])->Value(), keys[i]);
        EXPECT_EQ(map.Find(keys[i])->Value().data(), texts[i]) << "texts never move";
    }
    return failures;
}

TEST(StringMapAllocationFailure, LeavesTheEntriesAsTheyWere) {
    std::vector<std::string> keys;
    for (int i = 0; i < 300; ++i) {  // enough to grow the index and fill several blocks
        keys.push_back("key " + std::to_string(i) + std::string(static_cast<std::size_t>(i), 'x'));
    }
    keys.emplace_back(100'000, 'x');  // and one with a block of its own
    EXPECT_GT(InsertWithFailures(keys), 10U);
}

TEST(StringMapAllocationFailure, LeavesCollidingEntriesAsTheyWere) {
    EXPECT_GT(InsertWithFailures(KeysOfOneHash(200)), 100U)
        << "one for each entry of the ordered map";
}

}  // namespace
