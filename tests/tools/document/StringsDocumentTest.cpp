#include <cstddef>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "tools/orva-strings/document/NearMisses.h"
#include "tools/orva-strings/document/StringsDocument.h"
#include "tools/orva-strings/document/StringsReader.h"

using namespace std::string_literals;  // for texts that hold NUL bytes
using ::testing::PrintToString;

namespace {

// What the views of an entry, a section and so on refer to, copied.
struct Entry {
    std::size_t line;
    std::string key;
    std::string value;
    std::string beforeQuote;
    std::string afterQuote;
};

struct Section {
    std::size_t line;
    std::string name;
    std::vector<Entry> entries;
};

struct Misplaced {
    std::size_t line;
    std::string key;
    Obstacle obstacle;
};

Entry CopyOf(std::size_t line, const StringsEntry& entry) {
    return {line, std::string(entry.key), std::string(entry.value), std::string(entry.beforeQuote),
            std::string(entry.afterQuote)};
}

std::vector<Section> SectionsOf(const std::string& file) {
    std::vector<Section> sections;
    StringsReader lines(file);
    while (lines.Next()) {
        const std::size_t number = lines.Line().number;
        if (lines.IsHeader()) {
            sections.push_back({number, std::string(lines.SectionName()), {}});
        } else if (const auto entry = lines.Entry()) {
            sections.at(sections.size() - 1).entries.push_back(CopyOf(number, *entry));
        }
    }
    return sections;
}

std::vector<Misplaced> MisplacedIn(const std::string& file) {
    std::vector<Misplaced> misplaced;
    StringsReader lines(file);
    while (lines.Next()) {
        FindMisplaced(lines, [&](std::string_view key, Obstacle obstacle) {
            misplaced.push_back({lines.Line().number, std::string(key), obstacle});
        });
    }
    return misplaced;
}

std::vector<Entry> NearProtectedIn(const std::string& file) {
    std::vector<Entry> near;
    StringsReader lines(file);
    while (lines.Next()) {
        FindNearProtected(lines.Line().text, [&](const StringsEntry& entry) {
            near.push_back(CopyOf(lines.Line().number, entry));
        });
    }
    return near;
}

// The line with this number.
StringsLine LineOf(const StringsDocument& document, std::size_t number) {
    StringsReader lines = document.Lines();
    while (lines.Next() && lines.Line().number < number) {
    }
    return lines.Line();
}

TEST(StringsDocument, KeepsEveryByteThatItDoesNotChange) {
    const std::string files[] = {
        "",
        "\n",
        "\r",
        "\r\n",
        "\r\r\n",
        "no line end",
        "QVLANG=en\nABCD=\"1\"\nQVLANG=fr\r\nABCD=\"2\"\r",
        "\xEF\xBB\xBF// \xFF\n\n\n  \t\nQVLANG=en \nABCD = \"x\" ; note\n\0\n"s,
    };
    for (const std::string& file : files) {
        EXPECT_EQ(StringsDocument(file).Bytes(), file) << PrintToString(file);
    }
}

TEST(StringsDocument, KnowsItsSectionsAndTheirEntries) {
    const auto sections = SectionsOf(
        "BEFORE=\"none\"\nQVLANG=en\r\nABCD = \"a\\nb\" ;x\r\nABC=short\nno entry\nABCD =2\n"
        "QVLANG=\nQVREGION=US\nQVLANG=fr");
    ASSERT_EQ(sections.size(), 3U);
    EXPECT_EQ(sections[0].line, 1U);
    EXPECT_EQ(sections[0].name, "en");
    ASSERT_EQ(sections[0].entries.size(), 2U);
    EXPECT_EQ(sections[0].entries[0].line, 2U);
    EXPECT_EQ(sections[0].entries[0].key, "ABCD ");
    EXPECT_EQ(sections[0].entries[0].value, "a\nb");
    EXPECT_EQ(sections[0].entries[1].line, 5U);
    EXPECT_EQ(sections[0].entries[1].value, "2");
    EXPECT_EQ(sections[1].name, "");
    ASSERT_EQ(sections[1].entries.size(), 1U);
    EXPECT_EQ(sections[1].entries[0].key, "QVREGION");
    EXPECT_EQ(sections[2].line, 8U);
    EXPECT_EQ(sections[2].name, "fr");
    EXPECT_TRUE(sections[2].entries.empty());
}

TEST(StringsDocument, KnowsThePartsOfAnEntry) {
    const struct {
        std::string line;
        std::string key;
        std::string value;
        std::string beforeQuote;
        std::string afterQuote;
    } cases[] = {
        {"ABCD=\"x\"", "ABCD", "x", "", ""},
        {"ABCD = \"x\" ; note", "ABCD ", "x", " ", " ; note"},
        {"ABCD=a\"x\"b\"y\"c", "ABCD", "x\"b\"y", "a", "c"},
        {"ABCD=\"\"", "ABCD", "", "", ""},
        {"ABCD=\"\" text", "ABCD", "", "", " text"},
        {"ABCD=\"a\\nb\"", "ABCD", "a\nb", "", ""},
        {"ABCD=\"a\rb\"\rc", "ABCD", "a\rb", "", "\rc"},
        {"ABCD=\"a\0b\"c"s, "ABCD", "a\0b"s, "", "c"},
        {"ABCD==\"x\"", "ABCD", "x", "=", ""},
        {"ABCD=a=b \"x=y\"=", "ABCD", "x=y", "a=b ", "="},
        // If there is only one quote, the value is everything after it.
        {"ABCD=\"x", "ABCD", "x", "", ""},
        {"ABCD=a\"x ; note", "ABCD", "x ; note", "a", ""},
        {"ABCD=a\"", "ABCD", "", "a", ""},
        // Without a quote, everything is the value.
        {"ABCD=x ; note", "ABCD", "x ; note", "", ""},
        {"ABCD=a\\nb", "ABCD", "a\\nb", "", ""},
        {"ABCD=", "ABCD", "", "", ""},
        // Quotes in the key do not count.
        {"AB\"CD=x", "AB\"CD", "x", "", ""},
        {"AB\"CD=x\"y", "AB\"CD", "y", "x", ""},
        {"\"ABCD\" = \"x\";", "\"ABCD\" ", "x", " ", ";"},
        {"  // note=\"x\" ", "  // note", "x", "", " "},
    };
    for (const auto& c : cases) {
        for (const std::string end : {"", "\n", "\r\n"}) {
            SCOPED_TRACE(PrintToString(c.line + end));
            const auto sections = SectionsOf("\n\nQVLANG=en\n// note\n" + c.line + end);
            ASSERT_EQ(sections.size(), 1U);
            EXPECT_EQ(sections[0].line, 2U);
            EXPECT_EQ(sections[0].name, "en");
            ASSERT_EQ(sections[0].entries.size(), 1U);
            const Entry& entry = sections[0].entries[0];
            EXPECT_EQ(entry.line, 4U);
            EXPECT_EQ(entry.key, c.key);
            EXPECT_EQ(entry.value, c.value);
            EXPECT_EQ(entry.beforeQuote, c.beforeQuote);
            EXPECT_EQ(entry.afterQuote, c.afterQuote);
        }
    }
}

TEST(StringsDocument, KnowsTheWholeNameOfASection) {
    const std::string longName(1000, 'n');
    for (const std::string& name : {""s, "en"s, " en "s, "\"en\" ; note"s, "a=b"s, "a\\nb"s,
                                    "a\rb"s, "a\0b"s, "QVLANG=en"s, "\xC3\xA4"s, longName}) {
        const auto sections = SectionsOf("QVLANG=" + name + "\r\nABCD=1\nQVLANG=x");
        ASSERT_EQ(sections.size(), 2U);
        EXPECT_EQ(sections[0].name, name);
        EXPECT_EQ(sections[0].entries.size(), 1U) << name;
        EXPECT_EQ(sections[1].line, 2U);
    }
}

TEST(StringsDocument, KnowsThePartsOfALineNearAProtectedEntry) {
    const auto near = NearProtectedIn(
        "// note\n"
        "// IDE_A = a \"x\\ny\" b\n"
        "IDE_B=\"x\"\n"
        "ide_c: \"y\" ; note\r\n"
        "\n"
        "note\r\t\"IDE_D\"=\"\" z");
    ASSERT_EQ(near.size(), 3U);
    EXPECT_EQ(near[0].line, 1U);
    EXPECT_EQ(near[0].key, "IDE_A");
    EXPECT_EQ(near[0].value, "x\ny");
    EXPECT_EQ(near[0].beforeQuote, " a ");
    EXPECT_EQ(near[0].afterQuote, " b");
    EXPECT_EQ(near[1].line, 3U);
    EXPECT_EQ(near[1].key, "ide_c");
    EXPECT_EQ(near[1].value, "y");
    EXPECT_EQ(near[1].beforeQuote, "");
    EXPECT_EQ(near[1].afterQuote, " ; note");
    EXPECT_EQ(near[2].line, 5U);
    EXPECT_EQ(near[2].key, "IDE_D\"");
    EXPECT_EQ(near[2].value, "");
    EXPECT_EQ(near[2].beforeQuote, "");
    EXPECT_EQ(near[2].afterQuote, " z");
}

TEST(StringsDocument, MistakesNoOtherWordForAProtectedEntry) {
    std::vector<std::string> words = {"XDE_A", "IXE_A", "IDX_A", "XXE_A", "XDX_A", "IXX_A",
                                      "XXX_A", "ideA",  "ideZ",  "idea",  "idez",  "ID"};
    for (const char c :
         std::string("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_")) {
        words.push_back(std::string{c} + "IDE_A");
    }
    for (const std::string& word : words) {
        EXPECT_TRUE(NearProtectedIn("//" + word + "=\"x\"").empty()) << word;
    }
    for (const std::string word : {"ide@", "ide[", "ide`", "ide{", "ide0", "ide", "iDe_A"}) {
        EXPECT_EQ(NearProtectedIn("//" + word + "=\"x\"").size(), 1U) << word;
    }
}

TEST(StringsDocument, KnowsWhatIsNotReadAndWhy) {
    const auto misplaced = MisplacedIn(
        "\n"
        "IDE_A=1\n"
        "// note\rIDE_B=2\rQVLANG=de\n"
        "QVLANG=en\r\n"
        "IDE_C=3\n"
        "\xEF\xBB\xBFIDE_D=4\n"
        "\n"
        "x\r\xEF\xBB\xBFQVLANG=fr\r\n");
    const struct {
        std::size_t line;
        const char* key;
        Obstacle obstacle;
    } expected[] = {
        {1, "IDE_A", Obstacle::kNoSectionYet},    {2, "IDE_B", Obstacle::kCarriageReturn},
        {2, "QVLANG", Obstacle::kCarriageReturn}, {5, "IDE_D", Obstacle::kByteOrderMark},
        {7, "QVLANG", Obstacle::kByteOrderMark},
    };
    ASSERT_EQ(misplaced.size(), std::size(expected));
    for (std::size_t i = 0; i < misplaced.size(); ++i) {
        EXPECT_EQ(misplaced[i].line, expected[i].line) << i;
        EXPECT_EQ(misplaced[i].key, expected[i].key) << i;
        EXPECT_EQ(misplaced[i].obstacle, expected[i].obstacle) << i;
    }
}

TEST(StringsDocument, WritesAValueInPlaceOfTheOldOne) {
    const struct {
        std::string line;
        std::string value;
        std::string written;
    } cases[] = {
        {"ABCD=\"old\"", "new", "ABCD=\"new\""},
        {"ABCD=\"old\"", "old", "ABCD=\"old\""},
        {"ABCD=\"old\"\n", "new", "ABCD=\"new\"\n"},
        {"ABCD=\"old\"\r\n", "new", "ABCD=\"new\"\r\n"},
        {"ABCD = x\"old\" ; note\r\n", "new", "ABCD = x\"new\" ; note\r\n"},
        {"ABCD=\"say \"hi\" now\"", "new", "ABCD=\"new\""},
        {"ABCD=\"old\"", "say \"hi\"", "ABCD=\"say \"hi\"\""},
        {"ABCD=\"old\"", "a\nb", "ABCD=\"a\\nb\""},
        {"ABCD=\"old\"", "", "ABCD=\"\""},
        {"ABCD=\"\"", "new", "ABCD=\"new\""},
        {"ABCD=\"old\"", "a=b\\t\r", "ABCD=\"a=b\\t\r\""},
        {"ABCD=\"old\"", "back\\", "ABCD=\"back\\\""},
        // Only one quote.
        {"ABCD=\"old", "new", "ABCD=\"new"},
        {"ABCD=\"old\n", "a\nb", "ABCD=\"a\\nb\n"},
        {"ABCD=\"", "new", "ABCD=\"new"},
        {"ABCD=\"old", "say \"hi\"", "ABCD=\"say \"hi\"\""},
        {"ABCD=\"old\n", "ends with a return\r", "ABCD=\"ends with a return\r\"\n"},
        // No quotes.
        {"ABCD=old", "new", "ABCD=new"},
        {"ABCD=old\r\n", "new", "ABCD=new\r\n"},
        {"ABCD=", "new", "ABCD=new"},
        {"ABCD=old", "back\\nslash", "ABCD=back\\nslash"},
        {"ABCD=old", "a\nb", "ABCD=\"a\\nb\""},
        {"ABCD=old", "say \"hi\"", "ABCD=\"say \"hi\"\""},
        {"ABCD=old\n", "ends with a return\r", "ABCD=\"ends with a return\r\"\n"},
        {"ABCD=old\r\n", "ends with a return\r", "ABCD=ends with a return\r\r\n"},
        // A quote in the key is not the value's.
        {"AB\"CD=old", "new", "AB\"CD=new"},
        {"AB\"CD=\"old\"", "new", "AB\"CD=\"new\""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE("line " + PrintToString(c.line) + ", value " + PrintToString(c.value));
        const std::string before = "// first\r\nQVLANG=en\r\n";
        const std::string file = before + c.line;
        StringsDocument document(file);
        const StringsLine line = LineOf(document, 2);
        const auto text = document.SetValue(line, c.value);
        ASSERT_TRUE(text);
        EXPECT_EQ(std::string(*text) + std::string(line.ending), c.written);
        EXPECT_EQ(document.Bytes(), before + c.written);
        EXPECT_EQ(document.IsChanged(), c.written != c.line);
        EXPECT_EQ(SectionsOf(document.Bytes()).at(0).entries.at(0).value, c.value);
    }
}

TEST(StringsDocument, RefusesAValueThatWouldNotReadBackTheSame) {
    const struct {
        std::string line;
        std::string value;
    } cases[] = {
        {"ABCD=\"old\"", "back\\nslash"},   {"ABCD=\"old\"", "back\\nslash\nline"},
        {"ABCD=old", "back\\nslash\nline"}, {"ABCD=old", "back\\nslash \"quoted\""},
        {"ABCD=\"old", "back\\nslash"},     {"ABCD=\"old\"", "back\\\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE("line " + PrintToString(c.line) + ", value " + PrintToString(c.value));
        const std::string file = "QVLANG=en\n" + c.line;
        StringsDocument document(file);
        const bool isWritten = document.SetValue(LineOf(document, 1), c.value).has_value();
        if (isWritten) {
            EXPECT_EQ(SectionsOf(document.Bytes()).at(0).entries.at(0).value, c.value);
        } else {
            EXPECT_FALSE(document.IsChanged());
            EXPECT_EQ(document.Bytes(), file);
        }
        EXPECT_EQ(isWritten, c.value == "back\\\n") << "backslash, line feed can be written";
    }
}

TEST(StringsDocument, RemovesQuotesAroundAValue) {
    const struct {
        std::string line;
        std::string value;
        std::string written;  // empty: it can't be
    } cases[] = {
        {"ABCD=\"old\"", "back\\nslash", "ABCD=back\\nslash"},
        {"ABCD=\"old\"\r\n", "back\\nslash", "ABCD=back\\nslash\r\n"},
        {"ABCD=\"old", "back\\nslash", "ABCD=back\\nslash"},
        {"ABCD=\"\"", "new", "ABCD=new"},
        {"ABCD=\"", "new", "ABCD=new"},
        {"ABCD=\"a\"b\"", "new", "ABCD=new"},
        {"ABCD=\"old\"", "", "ABCD="},
        {"ABCD=\"old\"", "say \"hi\"", ""},
        {"ABCD=\"old\"", "a\nb", ""},
        {"ABCD=\"old\"\n", "ends with a return\r", ""},
        {"ABCD= \"old\"", "new", ""},
        {"ABCD=a\"old", "new", ""},
        {"ABCD=\"old\" ", "new", ""},
        {"ABCD=\"old\";", "new", ""},
        {"ABCD=old", "new", ""},
        {"ABCD=", "new", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE("line " + PrintToString(c.line) + ", value " + PrintToString(c.value));
        const std::string file = "QVLANG=en\n" + c.line;
        StringsDocument document(file);
        EXPECT_EQ(document.SetUnquoted(LineOf(document, 1), c.value), !c.written.empty());
        EXPECT_EQ(document.Bytes(), c.written.empty() ? file : "QVLANG=en\n" + c.written);
    }
}

TEST(StringsDocument, MakesNewLines) {
    const struct {
        std::string value;
        std::optional<std::string> written;
    } cases[] = {
        {"new", "ABCD=\"new\""},
        {"", "ABCD=\"\""},
        {"say \"hi\"", "ABCD=\"say \"hi\"\""},
        {"a\nb\r", "ABCD=\"a\\nb\r\""},
        {"back\\nslash", "ABCD=back\\nslash"},
        {"back\\nslash\r", std::nullopt},
        {"back\\nslash\n", std::nullopt},
        {"\"back\\nslash", std::nullopt},
    };
    for (const std::string end : {"\n", "\r\n"}) {
        const std::string file = "QVLANG=en" + end + "ABCD=1";
        StringsDocument document(file);
        for (const auto& c : cases) {
            const auto entry = document.NewEntry("ABCD", c.value);
            EXPECT_EQ(entry, c.written ? std::optional(*c.written + end) : std::nullopt)
                << PrintToString(c.value);
        }
        EXPECT_EQ(document.NewHeader("Deutsch"), "QVLANG=Deutsch" + end);
        EXPECT_FALSE(document.IsChanged());
    }
    const std::string oneLine = "QVLANG=en\r";
    EXPECT_EQ(StringsDocument(oneLine).NewHeader("de"), "QVLANG=de\n");
    const std::string empty = "\nQVLANG=en\r\n";
    EXPECT_EQ(StringsDocument(empty).NewHeader("de"), "QVLANG=de\n") << "as the first line's";
}

TEST(StringsDocument, AddsLinesBelowOthers) {
    const struct {
        std::string file;  // line 1 is changed, others are added below it
        std::string expected;
    } cases[] = {
        {"QVLANG=en\nABCD=1\nLAST=2\n", "QVLANG=en\nABCD=new\nA=1\nB=2\nLAST=2\n"},
        {"QVLANG=en\r\nABCD=1\r\nLAST=2", "QVLANG=en\r\nABCD=new\r\nA=1\r\nB=2\r\nLAST=2"},
        {"QVLANG=en\nABCD=1\n", "QVLANG=en\nABCD=new\nA=1\nB=2\n"},
        {"QVLANG=en\nABCD=1", "QVLANG=en\nABCD=new\nA=1\nB=2"},
        {"QVLANG=en\r\nABCD=1", "QVLANG=en\r\nABCD=new\r\nA=1\r\nB=2"},
        {"QVLANG=en\r\nABCD=1\r", "QVLANG=en\r\nABCD=new\r\nA=1\nB=2"},
        {"QVLANG=en\nABCD=1\r", "QVLANG=en\nABCD=new\r\nA=1\nB=2"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(PrintToString(c.file));
        StringsDocument document(c.file);
        const StringsLine line = LineOf(document, 1);
        const std::string end = document.NewHeader("").substr(7);
        document.SetValue(line, "new");
        document.InsertBelow(line, "A=1" + end);
        document.InsertBelow(line, "B=2" + end);
        EXPECT_EQ(document.Bytes(), c.expected);
        EXPECT_EQ(document.ChangeCount(), 3U);
    }
}

TEST(StringsDocument, WritesLongAndShortValuesInPieces) {
    constexpr std::size_t kPiece = 65'536;
    std::string file = "QVLANG=en\n";
    std::string expected = file;
    std::vector<std::string> values;  // empty: not to be changed
    for (const std::size_t length :
         {kPiece - 30, 1 * kPiece, 2 * kPiece, 2 * kPiece + 1, kPiece / 2, kPiece / 2}) {
        for (std::size_t i = 0; i < 100; ++i) {
            const std::string old = std::to_string(i);
            const std::string text(i == 99 ? length : i, 'x');
            const bool isChanged = i % 3 == 0;
            values.push_back(isChanged ? "\n" + text : "");
            file += "ABCD=\"" + old + "\" ; note\n";
            expected += "ABCD=\"" + (isChanged ? "\\n" + text : old) + "\" ; note\n";
        }
    }
    StringsDocument document(file);
    StringsReader lines = document.Lines();
    lines.Next();
    for (const std::string& value : values) {
        ASSERT_TRUE(lines.Next());
        if (!value.empty()) {
            EXPECT_TRUE(document.SetValue(lines.Line(), value));
        }
    }
    EXPECT_FALSE(lines.Next());
    EXPECT_TRUE(document.Bytes() == expected);

    std::size_t written = 0;
    document.WriteInPieces([&](std::string_view piece) {
        EXPECT_LE(piece.size(), kPiece);
        EXPECT_TRUE(piece == std::string_view(expected).substr(written, piece.size())) << written;
        written += piece.size();
    });
    EXPECT_EQ(written, expected.size());
}

TEST(StringsReader, GoesOnFromACopy) {
    StringsReader lines("QVLANG=en\nABCD=\"a\\nb\"\nQVLANG=fr");
    EXPECT_FALSE(lines.IsHeader());
    EXPECT_FALSE(lines.IsInSection());
    ASSERT_TRUE(lines.Next());
    EXPECT_TRUE(lines.IsHeader());
    StringsReader copy = lines;
    ASSERT_TRUE(copy.Next());
    EXPECT_EQ(lines.Line().number, 0U);
    EXPECT_EQ(lines.SectionName(), "en");
    ASSERT_TRUE(copy.Entry());
    EXPECT_EQ(copy.Entry()->value, "a\nb");
    ASSERT_TRUE(copy.Next());
    EXPECT_EQ(copy.SectionName(), "fr");
    EXPECT_FALSE(copy.Next());
    EXPECT_FALSE(copy.IsHeader());
    EXPECT_TRUE(copy.IsInSection());
}

TEST(StringsReader, IsAtNoLineAfterTheLast) {
    StringsReader lines("QVLANG=en\nABCD=1\nQVLANG=fr");
    while (lines.Next()) {
    }
    EXPECT_EQ(lines.Line().text, "");
    EXPECT_FALSE(lines.IsHeader());
    EXPECT_FALSE(lines.Entry());
    EXPECT_TRUE(lines.IsInSection());
    EXPECT_FALSE(lines.Next());
}

}  // namespace
