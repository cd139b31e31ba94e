// The command stats. Its output is compared whole.
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/tools/ToolTest.h"

namespace {

// Of four texts, German has one that is translated, one that is the same, and one that is empty.
const char kFile[] =
    "QVLANG=English\n"
    "MENU_OPEN=\"Open\"\n"
    "MENU_QUIT=\"Quit\"\n"
    "MENU_OK=\"OK\"\n"
    "IDE_TITLE=\"Title\"\n"
    "QVLANG=Deutsch\n"
    "MENU_OPEN=\"Auf\"\n"
    "MENU_OPEN=\"Auf\"\n"
    "MENU_OK=\"OK\"\n"
    "IDE_TITLE=\"\"\n"
    "IDE_OLD=\"Alt\"\n";

const std::string kHeading =
    "  ENTRIES  PERCENT  MISSING  STALE  EMPTY  SAME  PROTECTED  ERRORS  WARNINGS  LANGUAGE\n";

class Stats : public ToolTest {};

TEST_F(Stats, CountsWhatEachLanguageHas) {
    EXPECT_EQ(Run({"stats", "-"}, kFile), 0);
    EXPECT_EQ(m_out,
              kHeading +
                  "        4      100        0      -      0     0          1       0         0"
                  "  English  (reference)\n"
                  "        4       50        1      -      1     1          2       0         5"
                  "  Deutsch\n"
                  "5 warnings in 1 file\n");
    EXPECT_EQ(m_err, "");
}

TEST_F(Stats, ComparesWithAnotherReference) {
    EXPECT_EQ(Run({"stats", "--reference", "Deutsch", "-"},
                  "QVLANG=Fr\nABCD=1\nQVLANG=deutsch\nABCD=\nEFGH=2\nQVLANG=Deutsch\nABCD=2\n"
                  " QVLANG = \"It\" \nEFGH=2\nQVLANG=\n"),
              0);
    EXPECT_EQ(m_out,
              kHeading +
                  "        1       50        1      -      0     0          0       0         1"
                  "  Fr\n"
                  "        2      100        0      -      0     0          0       1         0"
                  "  deutsch  (reference)\n"
                  "        1       50        1      -      0     1          0       1         1"
                  "  It\n"
                  "        0        0        2      -      0     0          0       1         2"
                  "  \"\"\n"
                  "3 errors and 4 warnings in 1 file\n");
}

TEST_F(Stats, TakesAnEmptyTextForTheReferencesOwn) {
    EXPECT_EQ(Run({"stats", "-"}, "QVLANG=en\nABCD=\nABCE=1\nQVLANG=de\nABCD=\nABCE=\n"), 0);
    EXPECT_NE(m_out.find("        2       50        0      -      1     1  "), std::string::npos)
        << m_out;
}

TEST_F(Stats, CountsNoFindingOutsideSectionsForALanguage) {
    EXPECT_EQ(Run({"stats", "-"}, "ABCD=1\nQVLANG=\n"), 0);
    EXPECT_EQ(m_out,
              kHeading +
                  "        0      100        0      -      0     0          0       1         0"
                  "  \"\"  (reference)\n"
                  "1 error and 1 warning in 1 file\n");
    EXPECT_EQ(Run({"stats", "-"}, "\xFF\xFE\nQVLANG=en\n"), 0);
    EXPECT_NE(m_out.find("          0       0         0  en  (reference)\n1 error in 1 file\n"),
              std::string::npos)
        << m_out;
}

TEST_F(Stats, FindsWhatIsStaleWithAnEarlierFile) {
    const std::string key = Write("key", std::string(64, '1'));
    ASSERT_EQ(Run({"protect", "--key-file", key, "-"},
                  "QVLANG=en\nABCD=1\nIDE_A=secret\nQVLANG=de\nABCD=eins\nIDE_A=geheim\n"),
              0);
    const std::string base = Write("base", m_out);
    ASSERT_EQ(Run({"protect", "--key-file", key, "-"},
                  "QVLANG=en\nABCD=2\nIDE_A=other\nQVLANG=de\nABCD=zwei\nIDE_A=geheim\n"),
              0);
    const std::string file = Write("file", m_out);
    EXPECT_EQ(Run({"stats", "--base", base, "--key-file", key, file}), 0);
    EXPECT_NE(m_out.find("        2       50        0      1      0     0          1       0  "),
              std::string::npos)
        << m_out;
    EXPECT_EQ(Run({"stats", "--base", base, file}), 0) << "without the key";
    EXPECT_NE(m_out.find("        2      100        0      0      0     0          1       1  "),
              std::string::npos)
        << m_out;
    EXPECT_EQ(Run({"stats", "--base", base, file, file}), 2);
    EXPECT_EQ(m_err, "orva-strings: error: --base can be compared with only one FILE\n");
    EXPECT_EQ(Run({"stats", "--base", Write("other", "QVLANG=it\nABCD=1\n"), file}), 1);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(m_err, file + ": error: the earlier file has no section en\n");
}

TEST_F(Stats, ReadsSeveralFiles) {
    const std::string one = Write("one", "QVLANG=en\nABCD=1\n");
    const std::string two = Write("longer\n", "QVLANG=fr\nQVLANG=it\n");
    const std::string bad = Write("bad", "ABCD=1\n");
    EXPECT_EQ(Run({"stats", one, Path("missing"), two, bad}), 2);
    const std::string shown = Path("longer\\n");
    const auto padded = [&](std::string name) {
        name.resize(shown.size(), ' ');
        return name;
    };
    const std::string none =
        "      100        0      -      0     0          0       0         0  ";
    EXPECT_EQ(m_out, padded("FILE") + kHeading +                                   //
                         padded(one) + "        1" + none + "en  (reference)\n" +  //
                         shown + "        0" + none + "fr  (reference)\n" +        //
                         shown + "        0" + none + "it\n" +                     //
                         "no findings in 2 files\n");
    EXPECT_EQ(m_err, "orva-strings: error: " + Path("missing") + ": No such file or directory\n" +
                         bad + ": error: the file has no section\n");
    EXPECT_EQ(Run({"stats", bad}), 1);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(Run({"stats", "--reference", "en-", one}), 1);
    EXPECT_EQ(m_err, one + ": error: there is no section en-; did you mean 'en'?\n");
    const std::string wide = Write("f", "QVLANG=en\n");
    EXPECT_EQ(Run({"stats", "--stdin-name", "x", "-", "-"}, "QVLANG=en\n"), 2);
    EXPECT_EQ(Run({"stats", "--stdin-name", "x", "--format=json", "-"}, "QVLANG=en\n"), 0);
    EXPECT_EQ(nlohmann::json::parse(m_out)["files"][0]["file"], "x");
}

TEST_F(Stats, WritesJson) {
    const std::string second = Write("second", "QVLANG=\"\n");
    EXPECT_EQ(Run({"stats", "--format", "json", "-", second}, kFile), 0);
    EXPECT_EQ(nlohmann::ordered_json::parse(m_out), nlohmann::ordered_json::parse(R"(
        {"version": 1, "files": [
          {"file": "-", "errors": 0, "warnings": 5, "languages": [
            {"name": "English", "line": 1, "reference": true, "entries": 4, "percent": 100,
             "missing": 0, "stale": null, "empty": 0, "same": 0, "protected": 1, "errors": 0,
             "warnings": 0},
            {"name": "Deutsch", "line": 6, "reference": false, "entries": 4, "percent": 50,
             "missing": 1, "stale": null, "empty": 1, "same": 1, "protected": 2, "errors": 0,
             "warnings": 5}]},
          {"file": ")" + second + R"(", "errors": 1, "warnings": 0, "languages": [
            {"name": "\"", "line": 1, "reference": true, "entries": 0, "percent": 100,
             "missing": 0, "stale": null, "empty": 0, "same": 0, "protected": 0, "errors": 1,
             "warnings": 0}]}]})"));
    const std::string one = Write("one", "QVLANG=en\nABCD=1\n");
    EXPECT_EQ(Run({"stats", "--format", "json", "--base", one, one}), 0);
    EXPECT_EQ(nlohmann::json::parse(m_out)["files"][0]["languages"][0]["stale"], 0);
}

TEST_F(Stats, WritesMarkdown) {
    EXPECT_EQ(
        Run({"stats", "--format", "markdown", "-"}, "QVLANG=a|b <i>\nABCD=1\nQVLANG=de\nABCD=1\n"),
        0);
    EXPECT_EQ(
        m_out,
        "### \\-\n\n"
        "| language | entries | percent | missing | stale | empty | same | protected | errors | "
        "warnings |\n"
        "| --- | ---: | ---: | ---: | ---: | ---: | ---: | ---: | ---: | ---: |\n"
        "| a\\|b \\<i\\>  (reference) | 1 | 100 | 0 | - | 0 | 0 | 0 | 0 | 0 |\n"
        "| de | 1 | 100 | 0 | - | 0 | 1 | 0 | 0 | 0 |\n"
        "\n"
        "no findings in 1 file\n");
}

TEST_F(Stats, FailsIfLessOfALanguageIsTranslated) {
    const std::string bytes =
        "QVLANG=en\nABCD=1\nABCE=2\nABCF=3\nQVLANG=de\nABCD=a\nABCE=b\nQVLANG=fr\nABCD=a\n";
    const struct {
        const char* limit;
        int status;
        const char* said;
    } cases[] = {
        {"0", 0, ""},
        {"33", 0, ""},
        {"34", 1, "-:8: error: fr: 1 of 3 texts are translated, which is less than 34 %\n"},
        {"66", 1, "-:8: error: fr: 1 of 3 texts are translated, which is less than 66 %\n"},
        {"67", 1,
         "-:5: error: de: 2 of 3 texts are translated, which is less than 67 %\n"
         "-:8: error: fr: 1 of 3 texts are translated, which is less than 67 %\n"},
        {"100", 1,
         "-:5: error: de: 2 of 3 texts are translated, which is less than 100 %\n"
         "-:8: error: fr: 1 of 3 texts are translated, which is less than 100 %\n"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Run({"stats", "--fail-under", c.limit, "-"}, bytes), c.status);
        EXPECT_EQ(m_err, c.said);
        EXPECT_EQ(m_out.substr(0, kHeading.size()), kHeading);
    }
    EXPECT_EQ(Run({"stats", "--fail-under=100", "-"}, "QVLANG=en\nABCD=1\nQVLANG=de\nABCD=2\n"), 0);
    for (const char* const wrong : {"101", "-1", "x", "9.5", "", "1000", "99999999999999999999"}) {
        EXPECT_EQ(Run({"stats", "--fail-under", wrong, "-"}, bytes), 2) << wrong;
    }
    EXPECT_EQ(m_err,
              "orva-strings: error: --fail-under: '99999999999999999999' is not a whole number "
              "from 0 to 100\n");
}

}  // namespace
