#include <algorithm>
#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "strings/StringMap.h"
#include "tests/support/KeysOfOneHash.h"

using namespace std::string_literals;  // for texts that hold NUL bytes

namespace {

std::vector<std::string> Keys(const StringMap& map) {
    std::vector<std::string> keys;
    for (const StringMap::Entry* entry : map) {
        keys.emplace_back(entry->Key());
    }
    return keys;
}

TEST(StringMap, IsEmptyAtFirst) {
    const StringMap map;
    EXPECT_EQ(map.Size(), 0U);
    EXPECT_EQ(map.Find(""), nullptr);
    EXPECT_EQ(map.Find("key"), nullptr);
    EXPECT_EQ(map.begin(), map.end());
}

TEST(StringMap, KeepsTheFirstValueOfAKey) {
    StringMap map;
    EXPECT_TRUE(map.Insert("key", "first"));
    EXPECT_FALSE(map.Insert("key", "second"));
    EXPECT_EQ(map.Size(), 1U);
    ASSERT_NE(map.Find("key"), nullptr);
    EXPECT_EQ(map.Find("key")->Value(), "first");
}

TEST(StringMap, HoldsTextsOfAnyBytes) {
    StringMap map;
    const std::string texts[] = {"",      "a",   "A",    "a\0"s,
                                 "a\0b"s, "\0"s, "\xFF", std::string(100'000, 'x')};
    for (const std::string& text : texts) {
        EXPECT_TRUE(map.Insert(text, text + "value")) << ::testing::PrintToString(text);
    }
    for (const std::string& text : texts) {
        const StringMap::Entry* const entry = map.Find(text);
        ASSERT_NE(entry, nullptr) << ::testing::PrintToString(text);
        EXPECT_EQ(entry->Key(), text);
        EXPECT_EQ(entry->Value(), text + "value");
        EXPECT_EQ(*(entry->Key().data() + text.size()), '\0');
        EXPECT_EQ(*(entry->Value().data() + entry->Value().size()), '\0');
    }
    EXPECT_EQ(map.Find("b"), nullptr);
    EXPECT_EQ(map.Find("a\0c"s), nullptr);
}

TEST(StringMap, OrdersKeysByUnsignedBytesAndPrefixesFirst) {
    StringMap map;
    for (const std::string& key :
         {"b"s, "\x80"s, "ab"s, "a"s, ""s, "\x7F"s, "a\0"s, "B"s, "\xFF"s}) {
        map.Insert(key, "");
    }
    EXPECT_EQ(Keys(map),
              (std::vector<std::string>{"", "B", "a", "a\0"s, "ab", "b", "\x7F", "\x80", "\xFF"}));
}

TEST(StringMap, NeverMovesATextAsItGrows) {
    StringMap map;
    map.Insert("key 0", "value 0");
    const char* const text = map.Find("key 0")->Value().data();
    for (int i = 1; i < 100'000; ++i) {
        map.Insert("key " + std::to_string(i), "value " + std::to_string(i));
    }
    EXPECT_EQ(map.Find("key 0")->Value().data(), text);
    EXPECT_STREQ(text, "value 0");
}

TEST(StringMap, AnswersAsAnOrderedMapDoes) {
    StringMap map;
    std::map<std::string, std::string> model;
    std::mt19937 random(1);  // NOLINT: the same keys in every run
    for (int i = 0; i < 50'000; ++i) {
        const std::string key = std::to_string(random() % 20'000);
        const std::string value = std::to_string(i);
        EXPECT_EQ(map.Insert(key, value), model.emplace(key, value).second);
    }
    ASSERT_EQ(map.Size(), model.size());
    for (int i = 0; i < 25'000; ++i) {
        const std::string key = std::to_string(i);
        const auto expected = model.find(key);
        const StringMap::Entry* const entry = map.Find(key);
        ASSERT_EQ(entry != nullptr, expected != model.end()) << key;
        if (entry != nullptr) {
            EXPECT_EQ(entry->Value(), expected->second) << key;
        }
    }
    auto expected = model.begin();
    for (const StringMap::Entry* entry : map) {
        EXPECT_EQ(entry->Key(), expected->first);
        EXPECT_EQ(entry->Value(), expected->second);
        ++expected;
    }
}

TEST(StringMap, FindsAndMissesAtEverySize) {
    StringMap map;
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(map.Find(std::to_string(i)), nullptr) << i;
        ASSERT_TRUE(map.Insert(std::to_string(i), "x"));
        ASSERT_NE(map.Find(std::to_string(i)), nullptr) << i;
        ASSERT_EQ(map.Find("0" + std::to_string(i)), nullptr) << i;
    }
}

// Keys of every length that differ little, as in a strings file.
TEST(StringMap, HashesKeysApart) {
    std::vector<std::size_t> hashes;
    std::string key;
    for (int length = 0; length < 100; ++length) {
        for (std::size_t place = 0; place < key.size(); ++place) {
            for (const char c : {'0', '1', '2', 'A', 'B', '\0', '\xFF'}) {
                std::string other = key;
                other[place] = c;
                hashes.push_back(StringMap::Hash(other));
            }
        }
        hashes.push_back(StringMap::Hash(key));
        key += 'x';
    }
    const std::size_t keys = hashes.size();
    std::sort(hashes.begin(), hashes.end());
    EXPECT_EQ(std::unique(hashes.begin(), hashes.end()) - hashes.begin(), keys);

    // The bits that choose a group: as many balls as boxes, thrown at random, fill 63 % of the
    // boxes.
    constexpr std::size_t kBoxes = 1 << 15;
    ASSERT_GT(keys, kBoxes);
    std::shuffle(hashes.begin(), hashes.end(), std::mt19937(1));  // NOLINT: the same in every run
    std::vector<bool> isFilled(kBoxes);
    for (std::size_t i = 0; i < kBoxes; ++i) {
        isFilled[hashes[i] % kBoxes] = true;
    }
    const auto filled = std::count(isFilled.begin(), isFilled.end(), true);
    EXPECT_NEAR(static_cast<double>(filled) / kBoxes, 0.632, 0.01);

    // The seven bits that tell the keys of a group apart are each value equally often.
    std::vector<double> counts(128);
    for (const std::size_t hash : hashes) {
        ++counts[hash >> 57U];
    }
    const auto [fewest, most] = std::minmax_element(counts.begin(), counts.end());
    const double average = static_cast<double>(keys) / 128;
    EXPECT_GT(*fewest, average * 0.7);
    EXPECT_LT(*most, average * 1.3);
}

TEST(StringMap, StaysFastWithKeysOfOneHash) {
    // Enough that quadratic time would take minutes and exceed the test's time limit.
    std::vector<std::string> keys = KeysOfOneHash(1 << 18);
    StringMap map;
    for (const std::string& key : keys) {
        ASSERT_TRUE(map.Insert(key, key.substr(8, 8)));
        ASSERT_FALSE(map.Insert(key, ""));
    }
    EXPECT_EQ(map.Size(), keys.size());
    for (const std::string& key : keys) {
        const StringMap::Entry* const entry = map.Find(key);
        ASSERT_NE(entry, nullptr);
        ASSERT_EQ(entry->Value(), key.substr(8, 8));
    }
    std::sort(keys.begin(), keys.end());
    EXPECT_EQ(Keys(map), keys);
    EXPECT_EQ(map.Find(keys.front() + "x"), nullptr);
    map.Clear();
    EXPECT_EQ(map.Find(keys.back()), nullptr);
}

// Their hashes differ but lead to the same slots: from the last ones of the index around to the
// first, and on to the ordered map.
TEST(StringMap, HoldsCollidingKeysAtTheEndOfTheIndex) {
    std::vector<std::string> keys;
    for (std::uint64_t i = 0; keys.size() < 200; ++i) {
        std::string key = "key " + std::to_string(i);
        if (StringMap::Hash(key) % 0x200 >= 0x1FE) {
            keys.push_back(std::move(key));
        }
    }
    StringMap map;
    for (const std::string& key : keys) {
        ASSERT_TRUE(map.Insert(key, key));
    }
    // Also while the index grows.
    for (int i = 0; i < 5000; ++i) {
        ASSERT_TRUE(map.Insert("other " + std::to_string(i), "x"));
        for (std::size_t k = 0; i % 100 == 0 && k < keys.size(); ++k) {
            ASSERT_NE(map.Find(keys[k]), nullptr) << k << " after " << i;
            ASSERT_EQ(map.Find(keys[k])->Value(), keys[k]);
        }
    }
}

TEST(StringMap, HoldsLargeTextsAmongSmallOnes) {
    StringMap map;
    std::map<std::string, std::string> model;
    for (const unsigned size : {1U, 4000U, 16'000U, 17'000U, 65'000U, 66'000U, 3U, 65'533U, 65'534U,
                                65'535U, 65'536U, 65'537U, 5U, 1'000'000U}) {
        for (int i = 0; i < 5; ++i) {
            const std::string key = std::to_string(size) + ' ' + std::to_string(i);
            const std::string text(size, static_cast<char>('a' + i));
            for (const auto& [k, v] : {std::pair(key, text), std::pair(text, key)}) {
                ASSERT_TRUE(map.Insert(k, v));
                model.emplace(k, v);
            }
        }
    }
    for (const auto& [key, value] : model) {
        ASSERT_TRUE(map.Find(key) != nullptr) << key.size();
        EXPECT_TRUE(map.Find(key)->Key() == key) << key.size();
        EXPECT_TRUE(map.Find(key)->Value() == value) << key.size();
    }
    EXPECT_EQ(map.Find(std::string(65'535, 'x')), nullptr);
    auto expected = model.begin();
    for (const StringMap::Entry* entry : map) {
        EXPECT_TRUE(entry->Key() == (expected++)->first);
    }
}

TEST(StringMap, IsReadByManyThreadsAtOnce) {
    StringMap map;
    for (int i = 0; i < 1000; ++i) {
        map.Insert(std::to_string(i), "x");
    }
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 2000; ++i) {
                EXPECT_EQ(map.Find(std::to_string(i)) != nullptr, i < 1000);
            }
            EXPECT_EQ(Keys(map).size(), 1000U);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST(StringMap, IsEmptyAndUsableAfterClear) {
    StringMap map;
    map.Clear();
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 1000; ++i) {
            ASSERT_TRUE(map.Insert(std::to_string(i), "x"));
        }
        EXPECT_EQ(map.Size(), 1000U);
        map.Clear();
        EXPECT_EQ(map.Size(), 0U);
        EXPECT_EQ(map.Find("1"), nullptr);
        EXPECT_EQ(map.begin(), map.end());
    }
}

}  // namespace
