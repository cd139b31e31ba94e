#include <algorithm>
#include <map>
#include <random>
#include <string>

#include <OrvaLanguage/StringMap.h>
#include <gtest/gtest.h>

using namespace std::string_literals;  // for texts that hold NUL bytes

namespace {

std::vector<std::string> Keys(const StringMap& map) {
    std::vector<std::string> keys;
    for (const StringMap::Entry* entry : map.Ordered()) {
        keys.emplace_back(entry->Key());
    }
    return keys;
}

TEST(StringMap, IsEmptyAtFirst) {
    const StringMap map;
    EXPECT_EQ(map.Size(), 0U);
    EXPECT_EQ(map.Find(""), nullptr);
    EXPECT_EQ(map.Find("key"), nullptr);
    EXPECT_TRUE(map.Ordered().empty());
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
    std::mt19937 random(1);  // NOLINT: the same keys at every run
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
    for (const StringMap::Entry* entry : map.Ordered()) {
        EXPECT_EQ(entry->Key(), expected->first);
        EXPECT_EQ(entry->Value(), expected->second);
        ++expected;
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
        EXPECT_TRUE(map.Ordered().empty());
    }
}

}  // namespace
