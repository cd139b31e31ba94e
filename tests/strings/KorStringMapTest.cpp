// The table as a C++ host sees it, through the built library.
#include <algorithm>
#include <iterator>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include <OrvaLanguage/KorString.h>
#include <gtest/gtest.h>

#include "support/TemporaryBundle.h"

namespace {

using namespace std::string_literals;  // for texts that hold NUL bytes

class KorStringMapTest : public ::testing::Test {
protected:
    int Load(const std::string& lines) {
        m_bundle.Write("x.strings", "QVLANG=en\n" + lines);
        return KorLoadStrings("en", "x.strings", m_bundle.Get());
    }

    std::vector<std::string> KeysFrom(const std::string& key) const {
        std::vector<std::string> keys;
        for (auto entry = m_table.LowerBound(key); entry != m_table.end(); ++entry) {
            keys.emplace_back(entry->key);
        }
        return keys;
    }

    TemporaryBundle m_bundle;
    const KorStringMap& m_table = KorString::gMapLocalizedStrings;
};

TEST_F(KorStringMapTest, FindsExactlyAKey) {
    ASSERT_EQ(Load("MENU_OPEN=\"Open\"\nNUL\0_KEY=a\0b\n"s), 3);
    EXPECT_EQ(m_table.Size(), 3U);
    const auto open = m_table.Find("MENU_OPEN");
    ASSERT_TRUE(open);
    EXPECT_EQ(open->key, "MENU_OPEN");
    EXPECT_EQ(open->value, "Open");
    EXPECT_EQ(*(open->key.data() + 9), '\0');
    EXPECT_EQ(open->value.data(), KorGetLocalizedString("MENU_OPEN"));
    const auto nul = m_table.Find("NUL\0_KEY"s);
    ASSERT_TRUE(nul);
    EXPECT_EQ(nul->value, "a\0b"s);
    for (const std::string& key : {""s, "MENU_OPE"s, "MENU_OPENS"s, "menu_open"s, "NUL"s}) {
        EXPECT_FALSE(m_table.Find(key)) << key;
    }
    EXPECT_FALSE(m_table.Find({}));
}

TEST_F(KorStringMapTest, WalksInKeyOrder) {
    ASSERT_EQ(Load("ab_b=2\nab_\x80=3\nAB_a=0\n\x01___=1\n\0\0\0\0=4\n"s), 6);
    std::vector<std::string> pairs;
    for (const auto& entry : m_table) {
        pairs.push_back(std::string(entry.key) + '=' + std::string(entry.value));
    }
    EXPECT_EQ(pairs, (std::vector<std::string>{"\0\0\0\0=4"s, "\x01___=1", "AB_a=0", "QVLANG=en",
                                               "ab_b=2", "ab_\x80=3"}));
}

TEST_F(KorStringMapTest, WalksFromTheFirstKeyThatIsNotLess) {
    ASSERT_EQ(Load("AAAA=1\nBBBB=2\nBBBBB=3\nZZZZ=4\n"), 5);
    const std::vector<std::string> all = {"AAAA", "BBBB", "BBBBB", "QVLANG", "ZZZZ"};
    const struct {
        const char* from;
        std::size_t skipped;
    } cases[] = {{"", 0},      {"AAA", 0},   {"AAAA", 0}, {"AAAAA", 1}, {"BBBB", 1},
                 {"BBBBA", 2}, {"BBBBB", 2}, {"C", 3},    {"ZZZZ", 4},  {"ZZZZZ", 5}};
    for (const auto& c : cases) {
        EXPECT_EQ(KeysFrom(c.from),
                  std::vector<std::string>(all.begin() + static_cast<std::ptrdiff_t>(c.skipped),
                                           all.end()))
            << c.from;
    }
}

TEST_F(KorStringMapTest, WalksTheTableOfTheLastLoad) {
    ASSERT_EQ(Load("AAAA=1\n"), 2);
    EXPECT_EQ(KeysFrom(""), (std::vector<std::string>{"AAAA", "QVLANG"}));
    ASSERT_EQ(Load("BBBB=1\nCCCC=2\n"), 3);
    EXPECT_EQ(KeysFrom(""), (std::vector<std::string>{"BBBB", "CCCC", "QVLANG"}));
    m_bundle.Write("x.strings", "");
    ASSERT_EQ(KorLoadStrings("en", "x.strings", m_bundle.Get()), 0);
    EXPECT_EQ(m_table.begin(), m_table.end());
    EXPECT_EQ(m_table.Size(), 0U);
}

TEST_F(KorStringMapTest, HasIteratorsForAlgorithms) {
    ASSERT_EQ(Load("AAAA=1\nBBBB=2\n"), 3);
    using Iterator = KorStringMap::Iterator;
    static_assert(
        std::is_same_v<std::iterator_traits<Iterator>::iterator_category, std::input_iterator_tag>);
    static_assert(
        std::is_same_v<std::iterator_traits<Iterator>::reference, const KorStringMap::Entry&>);
    auto entry = m_table.begin();
    EXPECT_EQ((*entry++).key, "AAAA");
    EXPECT_EQ((*entry).key, "BBBB");
    EXPECT_EQ((++entry)->key, "QVLANG");
    EXPECT_EQ(std::count_if(m_table.begin(), m_table.end(),
                            [](const KorStringMap::Entry& each) { return each.value == "2"; }),
              1);
}

TEST_F(KorStringMapTest, IsWalkedByManyThreadsAtOnce) {
    std::string lines;
    for (int i = 1000; i < 2000; ++i) {
        lines += std::to_string(i) + "=x\n";
    }
    ASSERT_EQ(Load(lines), 1001);
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([&] {
            int next = 1000;
            for (auto entry = m_table.begin(); next < 2000; ++entry, ++next) {
                EXPECT_EQ(entry->key, std::to_string(next));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

// Calls it as a host built long ago does: by vtable slot, with texts in the layout of that time.
TEST_F(KorStringMapTest, HasTheBinaryInterfaceOfItsFirstVersion) {
    struct Texts {
        const char* key;
        std::size_t keyLength;
        const char* value;
        std::size_t valueLength;
    };
    struct Functions {
        std::size_t (*count)(const void*);
        bool (*findTexts)(const void*, const char*, std::size_t, Texts*);
        std::size_t (*lowerRank)(const void*, const char*, std::size_t);
        Texts (*textsAt)(const void*, std::size_t);
    };
    ASSERT_EQ(Load("BBBB=\"two\"\n"), 2);
    const void* const table = &m_table;
    const Functions& functions = **static_cast<const Functions* const*>(table);
    EXPECT_EQ(functions.count(table), 2U);
    Texts found = {"key", 3, "value", 5};
    EXPECT_FALSE(functions.findTexts(table, "CCCC", 4, &found));
    EXPECT_STREQ(found.key, "key") << "left alone";
    EXPECT_EQ(found.keyLength, 3U);
    EXPECT_STREQ(found.value, "value");
    EXPECT_EQ(found.valueLength, 5U);
    EXPECT_TRUE(functions.findTexts(table, "BBBBx", 4, &found));
    EXPECT_EQ(std::string(found.key, found.keyLength), "BBBB");
    EXPECT_EQ(std::string(found.value, found.valueLength), "two");
    EXPECT_EQ(functions.lowerRank(table, "C", 1), 1U);
    EXPECT_EQ(functions.textsAt(table, 0).value, found.value);
    EXPECT_EQ(functions.textsAt(table, 1).valueLength, 2U);
}

TEST_F(KorStringMapTest, CanNeitherBeMadeNorChanged) {
    using Table = decltype(KorString::gMapLocalizedStrings);
    static_assert(std::is_same_v<Table, const KorStringMap&>);
    static_assert(!std::is_default_constructible_v<KorStringMap>);
    static_assert(!std::is_copy_constructible_v<KorStringMap>);
    static_assert(!std::is_assignable_v<Table, Table>);
    static_assert(!std::is_assignable_v<KorStringMap&, const KorStringMap&>);
    static_assert(!std::is_destructible_v<KorStringMap>);
    static_assert(!std::is_assignable_v<decltype((m_table.begin()->key)), std::string_view>);
    static_assert(!std::is_assignable_v<decltype((*m_table.begin()->key.data())), char>);
}

}  // namespace
