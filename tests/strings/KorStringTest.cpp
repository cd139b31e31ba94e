#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <OrvaLanguage/KorString.h>
#include <gtest/gtest.h>

#include "support/TemporaryBundle.h"

using namespace std::string_literals;  // for texts that hold NUL bytes
using ::testing::PrintToString;

namespace {

// The lines that GetLine reads from a file of these bytes, until it returns false.
std::vector<std::string> LinesOf(const std::string& bytes) {
    const TemporaryBundle bundle;
    bundle.Write("lines", bytes);
    std::ifstream stream(bundle.Resources() / "lines");
    EXPECT_TRUE(stream.is_open());
    std::vector<std::string> lines;
    std::string line = "left over from before";
    while (KorString::GetLine(stream, line)) {
        lines.push_back(line);
    }
    EXPECT_FALSE(KorString::GetLine(stream, line)) << "a second call after the end";
    return lines;
}

TEST(KorStringKeywords, PointToTheKeywords) {
    EXPECT_STREQ(KorString::LANG_STATEMENT, "QVLANG=");
    EXPECT_STREQ(KorString::REGION_STATEMENT, "QVREGION=");
}

TEST(GetLine, SplitsAtLineFeeds) {
    const struct {
        std::string bytes;
        std::vector<std::string> lines;
    } cases[] = {
        {"", {}},
        {"\n", {""}},
        {"\n\n", {"", ""}},
        {"abc\r\n", {"abc"}},
        {"abc\r\r\n", {"abc\r"}},
        {"a\rb\n", {"a\rb"}},
        {"a\rb\r\n", {"a\rb"}},
        {"\r\n", {""}},
        {"\r\nabc", {"", "abc"}},
        {"\r", {""}},
        {"ABCD=1", {"ABCD=1"}},
        {"ABCD=1\r", {"ABCD=1"}},
        {"ABCD=1\n", {"ABCD=1"}},
        {"one\ntwo\n", {"one", "two"}},
        {"one\rtwo\rthree\r", {"one\rtwo\rthree"}},
        {"one\r\ntwo\nthree", {"one", "two", "three"}},
        {"a\0b\n\0\n"s, {"a\0b"s, "\0"s}},
        {"\xEF\xBB\xBFQVLANG=en\n", {"\xEF\xBB\xBFQVLANG=en"}},
        {"\xFF\xFE\x80\n", {"\xFF\xFE\x80"}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(LinesOf(c.bytes), c.lines) << "bytes " << PrintToString(c.bytes);
    }
}

TEST(GetLine, ReadsALineOfTenMegabytes) {
    const std::string line(10'000'000, 'x');
    const std::vector<std::string> lines = LinesOf(line + "\r\n" + line);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_TRUE(lines[0] == line);
    EXPECT_TRUE(lines[1] == line);
}

TEST(GetLine, IsFalseOnAStreamThatIsNotOpen) {
    std::ifstream stream;
    std::string line;
    EXPECT_FALSE(KorString::GetLine(stream, line));
}

TEST(GetLine, IsFalseOnAFolder) {
    const TemporaryFolder folder;
    std::ifstream stream(folder.Path());
    std::string line;
    EXPECT_FALSE(KorString::GetLine(stream, line));
}

TEST(GetLine, ThrowsWhatTheCallerRequestedFromTheStream) {
    const TemporaryFolder folder;
    folder.Write("x", "one\n");
    std::ifstream stream(folder.Path() / "x");
    stream.exceptions(std::ios::failbit);
    std::string line;
    EXPECT_TRUE(KorString::GetLine(stream, line));
    EXPECT_THROW(KorString::GetLine(stream, line), std::ios::failure);
}

struct KeyCase {
    std::string line;  // with the language keyword; the region's line is made from it
    const char* name;
    bool found;
};

const KeyCase kKeyCases[] = {
    {"QVLANG=en", "en", true},
    {"QVLANG=en", "EN", true},
    {"QVLANG=EN", "en", true},
    {"QVLANG=abcdefghijklmnopqrstuvwxyz", "ABCDEFGHIJKLMNOPQRSTUVWXYZ", true},
    {"QVLANG=en", "", true},
    {"QVLANG=en", "fr", false},
    {"QVLANG=en", "e", false},
    {"QVLANG=en", "en-US", false},
    {"QVLANG=en-US", "en", false},
    {"QVLANG=en ", "en", false},
    {"QVLANG=en ", "en ", true},
    {"QVLANG=en ", "", true},
    {"QVLANG=en\r", "en", false},
    {"QVLANG= en", "en", false},
    {" QVLANG=en", "", false},
    {" QVLANG=en", "en", false},
    {"qvlang=en", "", false},
    {"qvlang=en", "en", false},
    {"QVLANG=", "", true},
    {"QVLANG=", "en", false},
    {"QVLANG", "", false},
    {"QVLAN", "", false},
    {"Q", "", false},
    {"XQVLANG=en", "", false},
    {"XQVLANG=en", "en", false},
    {"QVLANG =en", "", false},
    {"QVLANG=QVLANG=en", "qvlang=EN", true},
    {"QVLANG=fran\xC3\xA7"
     "ais",
     "FRAN\xC3\xA7"
     "AIS",
     true},
    {"QVLANG=fran\xC3\xA7"
     "ais",
     "FRAN\xC3\x87"
     "AIS",
     false},
    {"QVLANG=en\0x"s, "EN", true},  // a C string ends at its first NUL
    {"QVLANG=[", "{", false},
    {"QVLANG=@", "`", false},
    {"QVLANG=en", nullptr, false},
    {"", nullptr, false},
    {"", "", false},
    {"", "en", false},
    {"MENU_OPEN=\"Open\"", "", false},
};

TEST(SearchLanguageKey, FindsTheHeaderLineOfASection) {
    for (const KeyCase& c : kKeyCases) {
        EXPECT_EQ(KorString::SearchLanguageKey(c.line, c.name), c.found)
            << "line " << PrintToString(c.line) << ", name " << PrintToString(c.name);
    }
}

TEST(SearchRegionKey, FollowsTheSameRulesWithItsOwnKeyword) {
    for (const KeyCase& c : kKeyCases) {
        std::string line = c.line;
        for (const auto& [language, region] :
             {std::pair("QVLANG", "QVREGION"), std::pair("qvlang", "qvregion"),
              std::pair("QVLAN", "QVREGIO")}) {
            const std::size_t at = line.find(language);
            if (at != std::string::npos) {
                line.replace(at, std::string(language).size(), region);
                break;
            }
        }
        EXPECT_EQ(KorString::SearchRegionKey(line, c.name), c.found)
            << "line " << PrintToString(line) << ", name " << PrintToString(c.name);
    }
    EXPECT_FALSE(KorString::SearchRegionKey("QVLANG=en", "en"));
    EXPECT_FALSE(KorString::SearchRegionKey("QVLANG=en", ""));
    EXPECT_FALSE(KorString::SearchLanguageKey("QVREGION=US", "US"));
    EXPECT_FALSE(KorString::SearchLanguageKey("QVREGION=US", ""));
}

// Restores the keywords after a test changed them.
class KeywordGuard {
public:
    KeywordGuard() : m_language(KorString::LANG_STATEMENT), m_region(KorString::REGION_STATEMENT) {}
    ~KeywordGuard() {
        KorString::LANG_STATEMENT = m_language;
        KorString::REGION_STATEMENT = m_region;
    }
    KeywordGuard(const KeywordGuard&) = delete;
    KeywordGuard& operator=(const KeywordGuard&) = delete;

private:
    const char* m_language;
    const char* m_region;
};

TEST(KorStringKeywords, AreThoseOfALoad) {
    const KeywordGuard guard;
    const TemporaryBundle bundle;
    bundle.Write("x", "QVLANG=fr\nLANGUAGE:en\nABCD=1\nQVLANG=en\nLANGUAGE:de\nEFGH=1\n");
    KorString::LANG_STATEMENT = "LANGUAGE:";
    EXPECT_EQ(KorLoadStrings("en", "x", bundle.Get()), 2) << "the header has no \"=\"";
    EXPECT_STREQ(KorGetLocalizedString("ABCD"), "1");
    EXPECT_STREQ(KorGetLocalizedString("QVLANG"), "en");
    EXPECT_EQ(KorLoadStrings("missing", "x", bundle.Get()), 2) << "the first section";
}

TEST(KorStringKeywords, AreReadAtEveryCall) {
    const KeywordGuard guard;
    char keyword[] = "LANGUAGE:";
    KorString::LANG_STATEMENT = keyword;
    KorString::REGION_STATEMENT = "R:";
    EXPECT_TRUE(KorString::SearchLanguageKey("LANGUAGE:en", "en"));
    EXPECT_FALSE(KorString::SearchLanguageKey("QVLANG=en", "en"));
    EXPECT_TRUE(KorString::SearchRegionKey("R:us", "US"));
    EXPECT_FALSE(KorString::SearchRegionKey("QVREGION=us", "US"));

    KorString::REGION_STATEMENT = "";
    EXPECT_FALSE(KorString::SearchRegionKey("", "")) << "an empty line is no header in any case";
    EXPECT_TRUE(KorString::SearchRegionKey("us", "US"));

    keyword[4] = '\0';  // its length is not cached either
    EXPECT_TRUE(KorString::SearchLanguageKey("LANGen", "en"));
    EXPECT_FALSE(KorString::SearchLanguageKey("LANGUAGE:en", "en"));
}

TEST(ConvertNewLine, TurnsEachEscapeIntoALineFeed) {
    const struct {
        std::string text;
        std::string converted;
    } cases[] = {
        {"", ""},
        {"a", "a"},
        {"\\", "\\"},
        {"n", "n"},
        {"\n", "\n"},
        {"\\n", "\n"},
        {"\\n\\n", "\n\n"},
        {"one\\ntwo", "one\ntwo"},
        {"\\none\\n", "\none\n"},
        {"end\\", "end\\"},
        {"end\\n\\", "end\n\\"},
        {"\\N", "\\N"},
        {"\\t", "\\t"},
        {"\\\\", "\\\\"},
        {"\\\\n", "\\\n"},
        {"\\\\\\n", "\\\\\n"},
        {"\\\\nn", "\\\nn"},
        {"\\\n", "\\\n"},
        {"n\\", "n\\"},
        {"a\0\\n\0"s, "a\0\n\0"s},
        {"\xC3\xA4\\n\xFF", "\xC3\xA4\n\xFF"},
    };
    for (const auto& c : cases) {
        const std::string text = c.text;
        EXPECT_EQ(KorString::ConvertNewLine(&text), c.converted) << PrintToString(c.text);
        EXPECT_EQ(text, c.text) << "the input was changed";
    }
}

TEST(ConvertNewLine, TakesLinearTime) {
    // Moving the rest of the text at each escape would take hours, not milliseconds.
    constexpr std::size_t kEscapes = 5'000'000;
    std::string text;
    for (std::size_t i = 0; i < kEscapes; ++i) {
        text += "\\n";
    }
    EXPECT_TRUE(KorString::ConvertNewLine(&text) == std::string(kEscapes, '\n'));
}

struct Entry {
    std::string key;
    std::string value;
};

TEST(GetLocalizedElement, SplitsAnEntry) {
    const struct {
        std::string line;
        Entry entry;
    } cases[] = {
        {"TITLE=\"Open file\"", {"TITLE", "Open file"}},
        {"TITLE = \"Open file\" ;menu", {"TITLE ", "Open file"}},
        {"ABCD=\"x\"", {"ABCD", "x"}},
        {"ABCD=", {"ABCD", ""}},
        {"ABCD=\"\"", {"ABCD", ""}},
        {"ABCD=\"", {"ABCD", ""}},
        {"ABCD=\"\"\"", {"ABCD", "\""}},
        {"ABCD=plain\\ntext", {"ABCD", "plain\\ntext"}},
        {"ABCD= blank ", {"ABCD", " blank "}},
        {"ABCD=\"one\\ntwo\"", {"ABCD", "one\ntwo"}},
        {"ABCD=\"a\\\\nb\"", {"ABCD", "a\\\nb"}},
        {"ABCD=\"tab\\there\"", {"ABCD", "tab\\there"}},
        {"ABCD=\"say \"hi\" now\"", {"ABCD", "say \"hi\" now"}},
        {"ABCD=\"open", {"ABCD", "open"}},
        {"ABCD=\"open\\nend", {"ABCD", "open\nend"}},
        {"ABCD=before\"open", {"ABCD", "open"}},
        {"ABCD=open\"", {"ABCD", ""}},
        {"ABCD=#\"x\"", {"ABCD", "x"}},
        {"ABCD=\"k=v\" ;x", {"ABCD", "k=v"}},
        {"ABCD=a=b=c", {"ABCD", "a=b=c"}},
        {"ABCD==", {"ABCD", "="}},
        {"ABCD=before\"in\"after", {"ABCD", "in"}},
        {"ABCD=before\\n\"in\"", {"ABCD", "in"}},
        {"ABCD=\"a\\", {"ABCD", "a\\"}},
        {"ABCD=\"a\\\"n\"", {"ABCD", "a\\\"n"}},
        {"    =x", {"    ", "x"}},
        {"AB\"C=\"x\"", {"AB\"C", "x"}},
        {"// a = b", {"// a ", " b"}},
        {"QVLANG=en", {"QVLANG", "en"}},
        {"QVREGION=US", {"QVREGION", "US"}},
        {" QVLANG=en", {" QVLANG", "en"}},
        {"ABCD=\"a\"\r", {"ABCD", "a"}},
        {"ABCD=a\r", {"ABCD", "a\r"}},
        {"A\0CD=\"x\0y\""s, {"A\0CD"s, "x\0y"s}},
        {"\xC3\x84\xC3\xB6=\"\xE2\x80\xA6\"", {"\xC3\x84\xC3\xB6", "\xE2\x80\xA6"}},
    };
    for (const auto& c : cases) {
        std::string key = "old key";
        std::string value = "old value";
        EXPECT_TRUE(KorString::GetLocalizedElement(c.line, &key, &value)) << PrintToString(c.line);
        EXPECT_EQ(key, c.entry.key) << PrintToString(c.line);
        EXPECT_EQ(value, c.entry.value) << PrintToString(c.line);
    }
}

TEST(GetLocalizedElement, LeavesKeyAndValueAloneOnAnyOtherLine) {
    const std::string lines[] = {
        "",           "=",       "=value",    "A=value",        "AB=value",
        "ABC=\"x\"",  "ABC=a=b", "ABC=ABCD=", "no equals sign", "\"only\" \"quotes\"",
        "\xC3\xA4=x",
    };
    for (const std::string& line : lines) {
        std::string key = "old key";
        std::string value = "old value";
        EXPECT_FALSE(KorString::GetLocalizedElement(line, &key, &value)) << PrintToString(line);
        EXPECT_EQ(key, "old key") << PrintToString(line);
        EXPECT_EQ(value, "old value") << PrintToString(line);
    }
}

}  // namespace
