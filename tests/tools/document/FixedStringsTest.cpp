#include <cstddef>
#include <initializer_list>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "tools/orva-strings/document/FixDiff.h"
#include "tools/orva-strings/document/FixedStrings.h"

using namespace std::string_literals;  // for texts that hold NUL bytes
using ::testing::PrintToString;

namespace {

const std::string kMark = "\xEF\xBB\xBF";

std::string Fixed(const std::string& bytes) {
    std::string fixed;
    FixedStrings(bytes).WriteInPieces([&](std::string_view piece) { fixed += piece; });
    return fixed;
}

std::string DiffOf(const std::string& bytes, const std::string& file = "File") {
    std::ostringstream out;
    WriteFixDiff(file, bytes, FixedStrings(bytes), out);
    return out.str();
}

struct Case {
    std::string bytes;
    std::string fixed;
};

void ExpectFixed(const std::initializer_list<Case>& cases) {
    for (const Case& c : cases) {
        EXPECT_EQ(Fixed(c.bytes), c.fixed) << PrintToString(c.bytes);
        EXPECT_EQ(Fixed(c.fixed), c.fixed) << "a second run changed it";
    }
}

void ExpectKept(const std::initializer_list<std::string>& files) {
    for (const std::string& bytes : files) {
        EXPECT_EQ(Fixed(bytes), bytes);
        EXPECT_EQ(DiffOf(bytes), "");
    }
}

TEST(FixedStrings, KeepsWhatNeedsNoMending) {
    ExpectKept({
        "",
        "\n",
        "\r\n",
        "no line end",
        "Notes.\n\nQVLANG=en\r\nABCD=\"1\" ;note \n  // x = 1\n\nQVLANG=fr \"x\" y\nABCD= \n",
        "QVLANG=en\nABCD=\"say \"hi\" now\"\n\0ABC=\xFF\nABCD=\"again\"\n\t\nABCD"s,
        "QVLANG=en\nABCD=a\rABCD=b\n",  // carriage returns among line feeds
        "QVLANG=en\nABCD=" + kMark + "\n " + kMark + "ABCD=1\n",
    });
}

TEST(FixedStrings, KeepsByteOrderMarksThatHideOtherMeanings) {
    ExpectKept({
        "QVLANG=en\n" + kMark + "ABCD=1\nABCD=2\n",  // lookups answer 2
        "QVLANG=en\nABCD=2\n" + kMark + "ABCD=1\n",
        "QVLANG=en\n" + kMark + "ABCD=1\nABCD=1\nABCD=2\n",  // lookups answer the second 1
        "QVLANG=en\n" + kMark + "QVLANG=de\nABCD=1\nQVLANG=de\nABCD=2\n",
    });
    ExpectFixed({{"QVLANG=en\n" + kMark + "ABCD=1\nABCD=1\n", "QVLANG=en\nABCD=1\n"}});
}

TEST(FixedStrings, RemovesByteOrderMarksAtTheStartOfLines) {
    ExpectFixed({
        {kMark, ""},
        {kMark + "\r\n", "\r\n"},
        {kMark + "QVLANG=en\n", "QVLANG=en\n"},
        {kMark + kMark + "Notes" + kMark + "\n" + kMark + "QVLANG=en\r\n" + kMark + "ABCD=1",
         "Notes" + kMark + "\nQVLANG=en\r\nABCD=1"},
        {"QVLANG=en\n" + kMark + "ABC=1\n" + kMark + "// x\n", "QVLANG=en\nABC=1\n// x\n"},
        // A mark before something else that is mended.
        {kMark + " QVLANG =\"en\"\n" + kMark + " ABCD =1\n", "QVLANG=en\nABCD=1\n"},
        {"QVLANG=en\nABCD=1\n" + kMark + "ABCD=1\n", "QVLANG=en\nABCD=1\n"},
    });
}

TEST(FixedStrings, SpellsHeaders) {
    ExpectFixed({
        {" QVLANG=en\n", "QVLANG=en\n"},
        {"QVLANG\t=en\r\n", "QVLANG=en\r\n"},
        {"QVLANG= en", "QVLANG=en"},
        {" qvlang = en \n", "QVLANG=en\n"},
        {"QVLAGN=en\n", "QVLANG=en\n"},
        {"QVLANG=en\nABCD=1\n  QVLANG=de\nABCD=2\n", "QVLANG=en\nABCD=1\nQVLANG=de\nABCD=2\n"},
    });
    ExpectKept({
        "qvlang=\"Language\"\n",                     // perhaps an entry
        "QVLAND=de\n",                               // another word
        " QVLANG=\n",                                // without a name
        "# QVLANG=en\n// QVLANG=en\n",               // comments
        "    QVLANG=en\nis a header.\nQVLANG=en\n",  // it would hide the other section
        "QVLANG=EN\nABCD=1\nqvlang=en\nABCD=2\n",    // it would be hidden
        " QVLANG=en\nABCD=1\n QVLANG=en\nABCD=2\n",
    });
}

TEST(FixedStrings, TrimsAndUnquotesSectionNames) {
    ExpectFixed({
        {"QVLANG=en \n", "QVLANG=en\n"},
        {"QVLANG=\t en \t\r\n", "QVLANG=en\r\n"},
        {"QVLANG=\"en\"\n", "QVLANG=en\n"},
        {"QVLANG= \" Canadian French \" ", "QVLANG=Canadian French"},
        {"QVLANG=a \nQVLANG=b \n", "QVLANG=a\nQVLANG=b\n"},
    });
    ExpectKept({
        "QVLANG=\n", "QVLANG= \n", "QVLANG=\"\"\n", "QVLANG=\"en\n", "QVLANG=en\"\n",
        "QVLANG=\"a\"b\"\n", "QVLANG=\"en\" ;x\n", "QVLANG=en \nQVLANG=en\n",
        "QVLANG=\"EN\"\nQVLANG=en \n",
        "QVLANG=en\0a\nQVLANG=en \n"s,  // to the library, a name ends at a NUL
        "QVLANG=\"en\r\"\n",            // the carriage return would end the line
    });
}

TEST(FixedStrings, TrimsKeys) {
    ExpectFixed({
        {"QVLANG=en\n ABCD=1\n\tEFGH\t = \"2\" ;x \nIJKL =3",
         "QVLANG=en\nABCD=1\nEFGH= \"2\" ;x \nIJKL=3"},
        {"QVLANG=en\n A B =1\n", "QVLANG=en\n A B =1\n"},
        {"QVLANG=en\n A BC =1\n", "QVLANG=en\nA BC=1\n"},
        {"QVLANG=en\n IDE_A = \"secret\"\n", "QVLANG=en\nIDE_A= \"secret\"\n"},
        // One key with two values stays one.
        {"QVLANG=en\n ABCD=1\n ABCD=2\n", "QVLANG=en\nABCD=1\nABCD=2\n"},
        // Another section's keys are others.
        {"QVLANG=en\nABCD=1\nQVLANG=de\nABCD =1\n", "QVLANG=en\nABCD=1\nQVLANG=de\nABCD=1\n"},
    });
    ExpectKept({
        " ABCD =1\nQVLANG=en\n",        // no entry, before the first section
        "QVLANG=en\n ABC=1\nABC =1\n",  // too short
        "QVLANG=en\n    =1\n",
        "QVLANG=en\nABCD=1\n ABCD=2\n",  // another key
        "QVLANG=en\nABCD=1\nABCD =1\n", "QVLANG=en\n ABCD=1\nABCD =2\n",
        "QVLANG=en\n # ABCD =1\n// ABCD =1\n ;ABCD =1\n",
        "QVLANG=en\n " + kMark + "ABCD=1\n",  // the mark would begin the line
        "QVLANG=en\nABCD=1\n qvland = 1\n",   // nearly a header
    });
}

TEST(FixedStrings, RemovesRepeatedEntries) {
    ExpectFixed({
        {"QVLANG=en\nABCD=1\nABCD=1\n", "QVLANG=en\nABCD=1\n"},
        {"QVLANG=en\r\nABCD=1\r\nEFGH=2\nABCD=1", "QVLANG=en\r\nABCD=1\r\nEFGH=2\n"},
        {"QVLANG=en\nABCD=\"1\"\nABCD=1\nABCD= \"1\" \nABCD=\"1\n", "QVLANG=en\nABCD=\"1\"\n"},
        {"QVLANG=en\nABCD=1\nABCD=2\nABCD=1\nABCD=2\n", "QVLANG=en\nABCD=1\nABCD=2\n"},
        {"QVLANG=en\n ABCD=1\n ABCD=1\n", "QVLANG=en\nABCD=1\n"},
        {"QVLANG=en\nABCD=1 ;x\nABCD=1 ;x\n", "QVLANG=en\nABCD=1 ;x\n"},
        {"QVLANG=en\nABCD=\"1\" ;x\nABCD=\"1\"\nABCD=\"1\";x \n", "QVLANG=en\nABCD=\"1\" ;x\n"},
        {" QVLANG=en\nABCD=1\nqvlang=de\nABCD=1\nABCD=1\n",
         "QVLANG=en\nABCD=1\nQVLANG=de\nABCD=1\n"},
        {"QVLANG=en\nABCD=\"a\\nb\"\nABCD=\"a\\nb\"\n", "QVLANG=en\nABCD=\"a\\nb\"\n"},
    });
    ExpectKept({
        "ABCD=1\nABCD=1\nQVLANG=en\nABCD=1\nQVLANG=de\nABCD=1\n",
        "QVLANG=en\nABCD=1\nabcd=1\nABCD=2\nABCD=1 \n",
        "QVLANG=en\nABCD=a\\nb\nABCD=\"a\\nb\"\n",  // eight characters, and a line feed
        "QVLANG=en\nABCD=\"1\"\nABCD=\"1\" ;x\n",   // the note would be lost
        "QVLANG=en\nABCD=\"1\"\nABCD=x \"1\"\n",
        "QVLANG=en\n// ABCD=1\n// ABCD=1\nABC=1\nABC=1\nx\nx\n",
        "QVLANG=en\nqvlang=\"x\"\nqvlang=\"x\"\n",
    });
}

TEST(FixedStrings, EndsLinesInLineFeedsIfNoneDoes) {
    ExpectFixed({
        {"\r\r", "\n\n"},
        {"QVLANG=en\r\rABCD=1\rABCD=1", "QVLANG=en\n\nABCD=1\n"},
        {kMark + "QVLANG=en\r" + kMark + " ABCD=1\r", "QVLANG=en\nABCD=1\n"},
        {"x\r qvlang=en\r", "x\nQVLANG=en\n"},
    });
    ExpectKept({"\r", "QVLANG=en\r", "QVLANG=en\r\nABCD=1\r", "QVLANG=en\rABCD=1\n"});
}

TEST(FixedStrings, SaysWhatOnlyAPersonCanMend) {
    const std::string utf16 =
        "the file is in UTF-16, which the library can't read: convert it to UTF-8";
    const std::string conflict = "git left a conflict here: resolve it first";
    const struct {
        std::string bytes;
        std::optional<std::size_t> line;
        std::string text;
    } cases[] = {
        {"\xFF\xFEQ\0V\0"s, std::nullopt, utf16},
        {"QVLANG=en\n<<<<<<< HEAD\nABCD=1\n=======\nABCD=2\n>>>>>>> x\n", 1U, conflict},
        {kMark + "=======\r\n", 0U, conflict},
        {"x\ry\r>>>>>>> theirs", 2U, conflict},
    };
    for (const auto& c : cases) {
        const auto obstacle = FixedStrings(c.bytes).Obstacle();
        ASSERT_TRUE(obstacle) << PrintToString(c.bytes);
        EXPECT_EQ(obstacle->severity, Severity::kError);
        EXPECT_EQ(obstacle->line, c.line) << PrintToString(c.bytes);
        EXPECT_EQ(obstacle->text, c.text);
    }
    for (const std::string bytes : {"", "\r\r", "QVLANG=en\nABCD=======\n <<<<<<< x\n"}) {
        EXPECT_FALSE(FixedStrings(bytes).Obstacle()) << PrintToString(bytes);
    }
}

TEST(FixedStrings, AreWrittenInPiecesOf64KiB) {
    std::string bytes = "QVLANG=en\n";
    std::string fixed = bytes;
    for (int i = 0; i < 20'000; ++i) {
        const std::string number = std::to_string(i);
        bytes += " KEY_" + number + "=\"" + number + "\"\n";
        fixed += "KEY_" + number + "=\"" + number + "\"\n";
    }
    std::string written;
    std::size_t pieces = 0;
    FixedStrings(bytes).WriteInPieces([&](std::string_view piece) {
        EXPECT_LE(piece.size(), 65536U);
        written += piece;
        ++pieces;
    });
    EXPECT_EQ(written, fixed);
    EXPECT_EQ(pieces, fixed.size() / 65536 + 1);
}

TEST(FixDiff, ShowsChangedLinesAmongTheirNeighbours) {
    EXPECT_EQ(DiffOf("QVLANG=en\n1\n2\n3\n4\n ABCD=1\r\n5\n6\n7\n8\n"),
              "--- File\n"
              "+++ File (fixed)\n"
              "@@ -3,7 +3,7 @@\n"
              " 2\n"
              " 3\n"
              " 4\n"
              "- ABCD=1\r\n"
              "+ABCD=1\r\n"
              " 5\n"
              " 6\n"
              " 7\n");
}

TEST(FixDiff, ShowsNearChangesTogetherAndOthersApart) {
    EXPECT_EQ(
        DiffOf(" QVLANG=en\nABCD=1\nABCD=1\n1\n2\n3\n4\n5\n6\nABCD=1\n1\n2\n3\n4\n5\n6\n7\nEFGH "
               "=1\n"),
        "--- File\n"
        "+++ File (fixed)\n"
        "@@ -1,13 +1,11 @@\n"
        "- QVLANG=en\n"
        "+QVLANG=en\n"
        " ABCD=1\n"
        "-ABCD=1\n"
        " 1\n"
        " 2\n"
        " 3\n"
        " 4\n"
        " 5\n"
        " 6\n"
        "-ABCD=1\n"
        " 1\n"
        " 2\n"
        " 3\n"
        "@@ -15,4 +13,4 @@\n"
        " 5\n"
        " 6\n"
        " 7\n"
        "-EFGH =1\n"
        "+EFGH=1\n");
}

TEST(FixDiff, SaysWhereTheLastLineHasNoEnd) {
    const std::string names = "--- File\n+++ File (fixed)\n";
    const std::string noEnd = "\\ No newline at end of file\n";
    EXPECT_EQ(DiffOf(" QVLANG=en"),
              names + "@@ -1,1 +1,1 @@\n- QVLANG=en\n" + noEnd + "+QVLANG=en\n" + noEnd);
    EXPECT_EQ(DiffOf(" QVLANG=en\nABCD=1\r"),
              names + "@@ -1,2 +1,2 @@\n- QVLANG=en\n+QVLANG=en\n ABCD=1\r\n" + noEnd);
    EXPECT_EQ(DiffOf("QVLANG=en\nABCD=1\nABCD=1"),
              names + "@@ -1,3 +1,2 @@\n QVLANG=en\n ABCD=1\n-ABCD=1\n" + noEnd);
    EXPECT_EQ(DiffOf(kMark), names + "@@ -1,1 +0,0 @@\n-" + kMark + "\n" + noEnd);
    EXPECT_EQ(DiffOf("QVLANG=en\n" + kMark),
              names + "@@ -1,2 +1,1 @@\n QVLANG=en\n-" + kMark + "\n" + noEnd);
}

TEST(FixDiff, ShowsTheWholeFileIfItsLinesHaveNewEnds) {
    EXPECT_EQ(DiffOf("QVLANG=en\rABCD=1\rABCD=1\rEFGH=2"),
              "--- File\n"
              "+++ File (fixed)\n"
              "@@ -1,1 +1,3 @@\n"
              "-QVLANG=en\rABCD=1\rABCD=1\rEFGH=2\n"
              "\\ No newline at end of file\n"
              "+QVLANG=en\n"
              "+ABCD=1\n"
              "+EFGH=2\n"
              "\\ No newline at end of file\n");
}

TEST(FixDiff, EscapesTheNameOnly) {
    EXPECT_EQ(DiffOf(" QVLANG=\x1B[1m\n", "a\nb\x1B"),
              "--- a\\nb\\x1B\n+++ a\\nb\\x1B (fixed)\n@@ -1,1 +1,1 @@\n- QVLANG=\x1B[1m\n"
              "+QVLANG=\x1B[1m\n");
    EXPECT_EQ(DiffOf(" QVLANG=en\n", "a b"),
              "--- a b\t\n+++ a b (fixed)\t\n@@ -1,1 +1,1 @@\n- QVLANG=en\n+QVLANG=en\n");
}

}  // namespace
