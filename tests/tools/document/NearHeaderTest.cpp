#include <optional>
#include <string_view>

#include <gtest/gtest.h>

#include "tools/orva-strings/document/Encoding.h"
#include "tools/orva-strings/document/LineText.h"
#include "tools/orva-strings/document/NearHeader.h"

using namespace std::string_view_literals;  // for texts that hold NUL bytes

namespace {

TEST(NearHeader, SaysWhatIsWrongAndWhatWasMeant) {
    const struct {
        std::string_view text;
        HeaderFault fault;
        std::string_view name;
        bool isUnmistakable;
    } cases[] = {
        {" QVLANG=en", HeaderFault::kBlankInFront, "en", true},
        {"\t \tQVLANG=en", HeaderFault::kBlankInFront, "en", true},
        {"QVLANG =en", HeaderFault::kBlankBeforeEquals, "en", true},
        {"  QVLANG\t = \"en\" ", HeaderFault::kBlankBeforeEquals, "en", true},
        {" QVLANG=\"a\"b\"", HeaderFault::kBlankInFront, "\"a\"b\"", false},
        {" QVLANG=\"en\" ; note", HeaderFault::kBlankInFront, "\"en\" ; note", false},
        {" QVLANG=", HeaderFault::kBlankInFront, "", false},
        {" QVLANG=\" \"", HeaderFault::kBlankInFront, "", false},
        {" QVLANG=a\rb", HeaderFault::kBlankInFront, "a\rb", false},
        {"qvlang=en", HeaderFault::kCase, "en", true},
        {" QVLang = \ten", HeaderFault::kCase, "en", true},
        {"qvlang=\"en\"", HeaderFault::kCase, "en", false},  // may be an entry
        {"qvlang=", HeaderFault::kCase, "", false},
        // Letters swapped or struck twice.
        {"VQLANG=en", HeaderFault::kMisspelt, "en", true},
        {"QVLAGN=en", HeaderFault::kMisspelt, "en", true},
        {"QQVLANG=en", HeaderFault::kMisspelt, "en", true},
        {"QVLANGG = en", HeaderFault::kMisspelt, "en", true},
        {"QVLANGG=\"en\"", HeaderFault::kMisspelt, "en", false},
        {"qvlagn=en", HeaderFault::kMisspelt, "en", false},
        // Letters missing, added or others: perhaps keys.
        {"VLANG=en", HeaderFault::kMisspelt, "en", false},
        {"QVLAN=en", HeaderFault::kMisspelt, "en", false},
        {"QVLNG=en", HeaderFault::kMisspelt, "en", false},
        {"QVLAND=de", HeaderFault::kMisspelt, "de", false},
        {"xVLANG=de", HeaderFault::kMisspelt, "de", false},
        {"QVLANGS=de", HeaderFault::kMisspelt, "de", false},
        {"_QVLANG=de", HeaderFault::kMisspelt, "de", false},
        {"QV LANG=de", HeaderFault::kMisspelt, "de", false},
    };
    for (const auto& c : cases) {
        const std::optional<NearHeader> near = FindNearHeader(c.text);
        ASSERT_TRUE(near) << c.text;
        EXPECT_EQ(near->fault, c.fault) << c.text;
        EXPECT_EQ(near->name, c.name) << c.text;
        EXPECT_EQ(near->isUnmistakable, c.isUnmistakable) << c.text;
    }
}

TEST(NearHeader, IsNothingElse) {
    for (const std::string_view text : {"",
                                        "=",
                                        " ",
                                        "QVLANG=en",
                                        "QVLANG=",
                                        "QVLANG= en",
                                        "QVLANG",
                                        " QVLANG",
                                        "QVLANG en",
                                        "QVREGION=US",
                                        "LANG=en",
                                        "QVLANG_X=en",
                                        "QLAGN=en",
                                        "VQLAGN=en",
                                        "QVALGN=en",
                                        "QVGANL=en",
                                        "\"QVLANG\"=en",
                                        "#QVLANG=en",
                                        "# QVLANG=en",
                                        ";QVLANG=en",
                                        "// QVLANG=en",
                                        "*QVLANG=en",
                                        "The header is QVLANG=en",
                                        "\xEF\xBB\xBFQVLANG=en",
                                        "TITLE=QVLANG=en"}) {
        EXPECT_FALSE(FindNearHeader(text)) << text;
    }
}

TEST(NearHeader, HasTheNameThatWasMeant) {
    const struct {
        std::string_view written;
        std::string_view meant;
    } cases[] = {
        {"", ""},
        {"en", "en"},
        {"Portugu\xC3\xAAs (Brasil)", "Portugu\xC3\xAAs (Brasil)"},
        {" \ten\t ", "en"},
        {"\"en\"", "en"},
        {" \" en\t\" ", "en"},
        {"\"\"", ""},
        {"\"", "\""},
        {"\"en", "\"en"},
        {"en\"", "en\""},
        {"\"a\"b\"", "\"a\"b\""},
        {"\"\"en\"\"", "\"\"en\"\""},
        {"a\"b\"c", "a\"b\"c"},
        {"'en'", "'en'"},
        {"\xC2\xA0"
         "en",
         "\xC2\xA0"
         "en"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(MeantSectionName(c.written), c.meant) << c.written;
    }
}

TEST(LineText, KnowsComments) {
    for (const std::string_view text :
         {"#", "# x", " \t#x", ";x", "//", "// A = b", "/* A", "* A = b", "-- A"}) {
        EXPECT_TRUE(IsCommentLike(text)) << text;
    }
    for (const std::string_view text :
         {"", " ", "A = b", "/", "/A", "-A", "\"#\"", "\\#", "A # b"}) {
        EXPECT_FALSE(IsCommentLike(text)) << text;
    }
}

TEST(LineText, KnowsConflictMarkers) {
    for (const std::string_view text :
         {"<<<<<<< HEAD", "<<<<<<< ", "||||||| base", "=======", ">>>>>>> theirs"}) {
        EXPECT_TRUE(IsConflictMarker(text)) << text;
    }
    for (const std::string_view text : {"", "<<<<<<<", "<<<<<<<x", "<<<<<< x", " <<<<<<< x",
                                        "======", "========", "======= ", "|||||||", ">>>>>>>>"}) {
        EXPECT_FALSE(IsConflictMarker(text)) << text;
    }
}

TEST(LineText, TrimsBlanksAndTabs) {
    const struct {
        std::string_view text;
        std::string_view trimmed;
    } cases[] = {{"", ""}, {" \t ", ""}, {"a", "a"}, {"\t a \t b ", "a \t b"}, {"\ra\v", "\ra\v"}};
    for (const auto& c : cases) {
        EXPECT_EQ(TrimBlanks(c.text), c.trimmed) << c.text;
    }
}

TEST(LineText, LosesAllMarksAtItsBeginning) {
    EXPECT_EQ(WithoutByteOrderMarks(""), "");
    EXPECT_EQ(WithoutByteOrderMarks("\xEF\xBB\xBF\xEF\xBB\xBF"), "");
    EXPECT_EQ(WithoutByteOrderMarks("\xEF\xBB\xBF A\xEF\xBB\xBF"), " A\xEF\xBB\xBF");
    EXPECT_EQ(WithoutByteOrderMarks(" \xEF\xBB\xBF"), " \xEF\xBB\xBF");
    EXPECT_EQ(WithoutByteOrderMarks("\xEF\xBB"), "\xEF\xBB");
}

TEST(Encoding, KnowsUtf16) {
    EXPECT_TRUE(IsUtf16("\xFF\xFE"));
    EXPECT_TRUE(IsUtf16("\xFE\xFF\0A"sv));
    EXPECT_TRUE(IsUtf16("Q\0V\0"sv));
    EXPECT_TRUE(IsUtf16("\0Q\0V"sv));
    EXPECT_TRUE(IsUtf16("\0Q\0"sv));
    EXPECT_FALSE(IsUtf16(""));
    EXPECT_FALSE(IsUtf16("\xFF"));
    EXPECT_FALSE(IsUtf16("\xEF\xBB\xBFQVLANG=en\nA\0B\0"sv));
    EXPECT_FALSE(IsUtf16("Q\0V"sv));
    EXPECT_FALSE(IsUtf16("Q\0VL"sv));
    EXPECT_FALSE(IsUtf16("\0\0\0\0"sv));
    EXPECT_FALSE(IsUtf16("\0Q"sv));
    EXPECT_FALSE(IsUtf16("A\xFF\xFE"));
}

TEST(Encoding, KnowsLinesThatEndInCarriageReturnsAlone) {
    EXPECT_TRUE(HasOnlyCarriageReturns("\r\r"));
    EXPECT_TRUE(HasOnlyCarriageReturns("QVLANG=en\rA"));
    EXPECT_FALSE(HasOnlyCarriageReturns(""));
    EXPECT_FALSE(HasOnlyCarriageReturns("\r"));
    EXPECT_FALSE(HasOnlyCarriageReturns("QVLANG=en"));
    EXPECT_FALSE(HasOnlyCarriageReturns("QVLANG=en\r"));  // it ends the only line
    EXPECT_FALSE(HasOnlyCarriageReturns("QVLANG=en\r\n"));
    EXPECT_FALSE(HasOnlyCarriageReturns("QVLANG=en\rA\n"));
}

}  // namespace
