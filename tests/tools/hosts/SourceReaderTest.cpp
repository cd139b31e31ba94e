#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tools/orva-strings/hosts/SourceReader.h"

using namespace std::string_literals;  // for texts that hold NUL bytes

namespace {

using Kind = SourceToken::Kind;
using Texts = std::vector<std::string>;

// The words as they are, the literals between quotes, with + after one that goes on, and the signs.
Texts Read(const std::string& source, SourceLanguage language = SourceLanguage::kC) {
    SourceReader reader(source, language);
    Texts texts;
    for (SourceToken token = reader.Next(); token.kind != Kind::kEnd; token = reader.Next()) {
        const bool isLiteral = token.kind == Kind::kLiteral;
        texts.push_back(isLiteral ? '"' + token.text + '"' + (token.isOpen ? "+" : "")
                                  : token.text);
    }
    return texts;
}

Texts ReadSwift(const std::string& source) {
    return Read(source, SourceLanguage::kSwift);
}

TEST(SourceReader, ReadsWordsLiteralsAndSigns) {
    EXPECT_EQ(Read("f(\"A\", _b1)"), (Texts{"f", "(", "\"A\"", ",", "_b1", ")"}));
    EXPECT_EQ(Read(""), Texts());
    EXPECT_EQ(Read(" \t\r\n\v\f"), Texts());
    EXPECT_EQ(Read("gr\xC3\xB6\xC3\x9F"
                   "e"),
              (Texts{"gr\xC3\xB6\xC3\x9F"
                     "e"}));
}

TEST(SourceReader, PassesOverCommentsNumbersCharactersAndIncludedFiles) {
    EXPECT_EQ(Read("a // \"A\"\nb /* \"B\" // */ c"), (Texts{"a", "b", "c"}));
    EXPECT_EQ(Read("a // \\\n\"A\"\nb"), (Texts{"a", "b"}));
    EXPECT_EQ(Read("a // \\\r\n\"A\"\nb"), (Texts{"a", "b"}));
    EXPECT_EQ(Read("/\\\n* \"A\" *\\\n/ b"), (Texts{"b"}));
    EXPECT_EQ(Read("a /* /* */ b"), (Texts{"a", "b"}));
    EXPECT_EQ(Read("a /* \"A\""), (Texts{"a"}));
    EXPECT_EQ(Read("'\"' a '\\'' b L'\"' c"), (Texts{"a", "b", "L", "c"}));
    EXPECT_EQ(Read("1'000'000 a 0x1F'FFu b 1.5e3 c"), (Texts{"a", "b", "c"}));
    EXPECT_EQ(Read("#include \"a.h\"\n # import \"b.h\"\n#define X \"A\"\n"),
              (Texts{"X", "\"A\""}));
    EXPECT_EQ(Read("/**/ #include \\\n \"a.h\"\nb"), (Texts{"b"}));
    EXPECT_EQ(Read("a #include \"b\""), (Texts{"a", "#", "include", "\"b\""}));
    EXPECT_EQ(Read("#error don't \"\na"), (Texts{"don", "a"}));
}

TEST(SourceReader, ReadsLiteralsOfEachKind) {
    EXPECT_EQ(Read(R"("A" "B" /* x */ "C")"), (Texts{"\"ABC\""}));
    EXPECT_EQ(Read("\"A\"\n\"B\""), (Texts{"\"AB\""}));
    EXPECT_EQ(Read("\"A\" x \"B\""), (Texts{"\"A\"", "x", "\"B\""}));
    EXPECT_EQ(Read("L\"A\" u8\"B\" u\"C\" U\"D\""), (Texts{"\"ABCD\""}));
    EXPECT_EQ(Read("x\"A\" FOR\"B\""), (Texts{"x", "\"A\"", "FOR", "\"B\""}));
    EXPECT_EQ(Read("@\"A\" @\"B\""), (Texts{"\"AB\""}));
    EXPECT_EQ(Read("\"A\"s, \"B\"sv, \"C\"_key, \"D\"PRIu64"),
              (Texts{"\"A\"", ",", "\"B\"", ",", "\"C\"", ",", "\"D\"", "PRIu64"}));
    EXPECT_EQ(Read("\"A\\\nB\" \"C\\\r\nD\""), (Texts{"\"ABCD\""}));
    EXPECT_EQ(Read("\"A\nb"), (Texts{"\"A\"", "b"}));
    EXPECT_EQ(Read("\"A"), (Texts{"\"A\""}));
    EXPECT_EQ(Read("\"A\\"), (Texts{"\"A\0\""s}));  // a file that ends within an escape
}

TEST(SourceReader, ReadsEscapes) {
    EXPECT_EQ(Read(R"("\x41\102\103D")"), (Texts{"\"ABCD\""}));
    EXPECT_EQ(Read(R"("\1012")"), (Texts{"\"A2\""}));
    EXPECT_EQ(Read(R"("\u00e4\U0001F600\uD800")"), (Texts{"\"ä\U0001F600\uFFFD\""}));
    EXPECT_EQ(Read(R"("\n\t\"\\\?\'\a\b\f\v\r")"), (Texts{"\"\n\t\"\\?'\a\b\f\v\r\""}));
    EXPECT_EQ(Read(R"("A\0B")"), (Texts{"\"A\0B\""s}));
    EXPECT_EQ(Read("\"A\\\\\\\nB\""), (Texts{"\"A\\B\""}));
}

TEST(SourceReader, ReadsRawLiterals) {
    EXPECT_EQ(Read("R\"(A\\n\"B)\" c"), (Texts{"\"A\\n\"B\"", "c"}));
    EXPECT_EQ(Read("u8R\"x(A)\")x\" c"), (Texts{"\"A)\"\"", "c"}));
    EXPECT_EQ(Read("R\"(A\\\nB\n)\""), (Texts{"\"A\\\nB\n\""}));
    EXPECT_EQ(Read("R\"(A"), (Texts{"\"A\""}));
    EXPECT_EQ(Read("R\"("), (Texts{"\"\""}));
    EXPECT_EQ(Read("R\"A\" b"), (Texts{"\"A\"", "b"}));  // no raw literal at all
}

TEST(SourceReader, ReadsSwift) {
    EXPECT_EQ(ReadSwift("f(\"A\") // \"B\"\n/* /* */ \"C\" */ d"),
              (Texts{"f", "(", "\"A\"", ")", "d"}));
    EXPECT_EQ(ReadSwift(R"("A\u{e4}\n\"\\\0")"), (Texts{"\"Aä\n\"\\\0\""s}));
    EXPECT_EQ(ReadSwift("\"A\" \"B\""), (Texts{"\"A\"", "\"B\""}));
    EXPECT_EQ(ReadSwift("\"A_\\(f(x, \"B\"))_C\" + d"),
              (Texts{"\"A_\"+", "f", "(", "x", ",", "\"B\"", ")", ")", "+", "d"}));
    EXPECT_EQ(ReadSwift(R"("A\(b)C\(d)E" f)"), (Texts{"\"A\"+", "b", ")", "d", ")", "f"}));
    EXPECT_EQ(ReadSwift(R"x("A\("B\(c)")" d)x"), (Texts{"\"A\"+", "\"B\"+", "c", ")", ")", "d"}));
    EXPECT_EQ(ReadSwift("\"\"\"\nA\"B\"\n\"\"\" c"), (Texts{"\"A\"B\"\"", "c"}));
    EXPECT_EQ(ReadSwift(R"x(#"A"\n\(b)"# c ##"D"#\##(e)"## f)x"),
              (Texts{R"x("A"\n\(b)")x", "c", "\"D\"#\"+", "e", ")", "f"}));
    EXPECT_EQ(ReadSwift("\"\" a \"b\nc"), (Texts{"\"\"", "a", "\"b\"", "c"}));
    EXPECT_EQ(ReadSwift("#if a\n#selector(b)"),
              (Texts{"#", "if", "a", "#", "selector", "(", "b", ")"}));
    EXPECT_EQ(ReadSwift("0...9 '\"' a"), (Texts{".", ".", "'", "\"' a\""}));
}

TEST(SourceReader, ReadsSwiftInSeveralLines) {
    EXPECT_EQ(ReadSwift("\"\"\"\n    A\n      B\n\n    C\n    \"\"\""), (Texts{"\"A\n  B\n\nC\""}));
    EXPECT_EQ(ReadSwift("\"\"\" \t\r\n\tA\r\n\t\"\"\""), (Texts{"\"A\""}));
    EXPECT_EQ(ReadSwift("\"\"\"\n  A\\\n  B\n  \"\"\""), (Texts{"\"A  B\""}));
    EXPECT_EQ(ReadSwift("\"\"\"\n  A_\\(b)\n  \"\"\" c"), (Texts{"\"A_\"+", "b", ")", "c"}));
    EXPECT_EQ(ReadSwift("\"\"\"\n\"\"\""), (Texts{"\"\""}));
    EXPECT_EQ(ReadSwift("\"\"\"\n\n\"\"\""), (Texts{"\"\""}));
    EXPECT_EQ(ReadSwift("\"\"\"\n\nA\n\"\"\""), (Texts{"\"\nA\""}));
    EXPECT_EQ(ReadSwift("\"\"\"A\n\"\"\""), (Texts{"\"A\n\""}));  // nothing that Swift accepts
    EXPECT_EQ(ReadSwift("\"\"\"  "), (Texts{"\"  \""}));
    EXPECT_EQ(ReadSwift("\"\"\"\n  \\(b)\n\"\"\""), (Texts{"\"\"+", "b", ")"}));
}

TEST(SourceReader, SaysWhereTokensBegin) {
    const std::string source = "a /* */ \\\n  \"B\"";
    SourceReader reader(source, SourceLanguage::kC);
    EXPECT_EQ(reader.Next().begin, 0U);
    EXPECT_EQ(reader.Next().begin, source.find('"'));
}

TEST(SourcePlaces, CountsLinesAndCharacters) {
    const std::string source =
        "a\n\xC3\xA4\xFF"
        "bc\n\nd";
    SourcePlaces places(source);
    const std::vector<std::array<std::size_t, 3>> expected = {
        {0, 0, 0}, {2, 1, 0}, {4, 1, 1}, {5, 1, 2}, {6, 1, 3}, {9, 3, 0}, {9, 3, 0}};
    for (const auto& [offset, line, column] : expected) {
        const Place place = places.PlaceOf(offset);
        EXPECT_EQ(place.line, line) << offset;
        EXPECT_EQ(place.column, column) << offset;
    }
}

// The test would run into its time limit if a part of a source were read again and again.
TEST(SourceReader, TakesTimeInProportionToTheSource) {
    const auto repeated = [](const std::string& text) {
        std::string source;
        while (source.size() < 200'000) {
            source += text;
        }
        return source;
    };
    for (const char* const text : {"\"A\" ", "#", "\"\\(", "/", "\\\n", "R\"(", "\"\"\"#", "/*",
                                   "'", "\"", "((", "#\"", "1'", "\x80", "\"A\"x", "\"\\x"}) {
        for (const SourceLanguage language : {SourceLanguage::kC, SourceLanguage::kSwift}) {
            SCOPED_TRACE(text);
            const std::string source = repeated(text);
            SourceReader reader(source, language);
            SourcePlaces places(source);
            for (SourceToken token = reader.Next(); token.kind != Kind::kEnd;
                 token = reader.Next()) {
                ASSERT_LT(token.begin, source.size());
                places.PlaceOf(token.begin);
            }
        }
    }
}

}  // namespace
