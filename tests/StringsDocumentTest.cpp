#include <string>

#include <gtest/gtest.h>

#include "tools/orva-strings/StringsDocument.h"

using namespace std::string_literals;  // for texts that hold NUL bytes
using ::testing::PrintToString;

namespace {

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
    const StringsDocument document(
        "BEFORE=\"none\"\nQVLANG=en\r\nABCD = \"a\\nb\" ;x\r\nABC=short\nno entry\nABCD =2\n"
        "QVLANG=\nQVREGION=US\nQVLANG=fr");
    const auto sections = document.Sections();
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

TEST(StringsDocument, WritesAValueWhereTheOldOneStood) {
    const struct {
        std::string line;
        std::string value;
        std::string written;
    } cases[] = {
        {"ABCD=\"old\"", "new", "ABCD=\"new\""},
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
        // One quote only.
        {"ABCD=\"old", "new", "ABCD=\"new"},
        {"ABCD=\"old\n", "a\nb", "ABCD=\"a\\nb\n"},
        {"ABCD=\"", "new", "ABCD=\"new"},
        {"ABCD=\"old", "say \"hi\"", "ABCD=\"say \"hi\"\""},
        {"ABCD=\"old\n", "ends with a return\r", "ABCD=\"ends with a return\r\"\n"},
        // None.
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
        StringsDocument document(before + c.line);
        EXPECT_TRUE(document.SetValue(2, c.value));
        EXPECT_EQ(document.Bytes(), before + c.written);
        const StringsDocument again(document.Bytes());
        EXPECT_EQ(again.Sections().at(0).entries.at(0).value, c.value);
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
        StringsDocument document("QVLANG=en\n" + c.line);
        const bool isWritten = document.SetValue(1, c.value);
        if (isWritten) {
            EXPECT_EQ(StringsDocument(document.Bytes()).Sections().at(0).entries.at(0).value,
                      c.value);
        } else {
            EXPECT_EQ(document.Bytes(), "QVLANG=en\n" + c.line);
        }
        EXPECT_EQ(isWritten, c.value == "back\\\n") << "backslash, line feed can be written";
    }
}

}  // namespace
