// The command show, run in this process. Its output is compared whole.
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/StoredForm.h"
#include "tests/tools/ToolTest.h"

using namespace std::string_literals;  // for texts that hold NUL bytes

namespace {

const std::string kNoKey = ": there is no such key in the section";

std::string StoredHere(const std::string& text) {
    return Stored(text, DevelopmentKey());
}

class Show : public ToolTest {
protected:
    // Makes a key file and returns the key.
    Bytes WriteKey(const std::string& name) const {
        Bytes key = CountingBytes(32, 1);
        m_folder.Write(name, ToHex(key) + "\n");
        return key;
    }
};

TEST_F(Show, ShowsAKeyInEveryLanguage) {
    const std::string file = "ABCD=0\nQVLANG=English\nMENU=\"File\"\nIDE_A=\"" + StoredHere("a") +
                             "\"\nQVLANG=Fran\xC3\xA7"
                             "ais\nMENU =\"Fichier\"\nIDE_A=\"" +
                             StoredHere("b") + "\"\nQVLANG=Deutsch \nMENU=\"Datei\\nneu\"\n";
    EXPECT_EQ(Run({"show", "--all-languages", "-", "MENU", "IDE_A"}, file), 1);
    EXPECT_EQ(m_out,
              "English: MENU=\"File\"\n"
              "English: IDE_A=(protected)\n"
              "Fran\xC3\xA7"
              "ais: MENU=null\n"
              "Fran\xC3\xA7"
              "ais: IDE_A=(protected)\n"
              "\"Deutsch \": MENU=\"Datei\\nneu\"\n"
              "\"Deutsch \": IDE_A=null\n");
    EXPECT_EQ(m_err, "-:5: error: MENU" + kNoKey +
                         " 'Fran\xC3\xA7"
                         "ais'; did you mean 'MENU '?\n" +
                         "-:8: error: IDE_A" + kNoKey + " 'Deutsch '\n");
    EXPECT_EQ(Run({"show", "--all-languages", "--reveal", "-", "QVLANG"}, file), 0);
    EXPECT_EQ(m_out,
              "English: QVLANG=\"English\"\n"
              "Fran\xC3\xA7"
              "ais: QVLANG=\"Fran\xC3\xA7"
              "ais\"\n"
              "\"Deutsch \": QVLANG=\"Deutsch \"\n");
    EXPECT_EQ(m_err, "");
}

// The library keeps the first text of a protected key for the life of the process, but each section
// is shown as if it were the first to be loaded.
TEST_F(Show, ShowsProtectedTextsThatDifferBetweenLanguages) {
    std::string file;
    std::string shown;
    for (const std::string language : {"en", "de", "fr"}) {
        file += "QVLANG=" + language + "\nIDE_A=\"" + StoredHere("in " + language) + "\"\n";
        shown += language + ": IDE_A=\"in " + language + "\"\n";
    }
    EXPECT_EQ(Run({"show", "--all-languages", "--reveal", "-", "IDE_A"}, file), 0) << m_err;
    EXPECT_EQ(m_out, shown);
    for (const std::string language : {"fr", "en"}) {
        EXPECT_EQ(Run({"show", "--language", language, "--reveal", "-", "IDE_A"}, file), 0);
        EXPECT_EQ(m_out, "IDE_A=\"in " + language + "\"\n");
    }
}

TEST_F(Show, ShowsEverySectionWhole) {
    const std::string readable = ": the value is not protected, so the library answers null\n";
    EXPECT_EQ(Run({"show", "--all-languages", "-"},
                  "QVLANG=en\nABCD=1\nQVLANG=de\nIDE_A=text\nABCD=2\n\nABCD=3"),
              1);
    EXPECT_EQ(m_out,
              "en: ABCD=\"1\"\nen: QVLANG=\"en\"\n"
              "de: ABCD=\"2\"\nde: IDE_A=null\nde: QVLANG=\"de\"\n");
    EXPECT_EQ(m_err, "-:4: error: IDE_A" + readable);
}

TEST_F(Show, LeavesOutWhatNoLoadCanReach) {
    const std::string unreachable = "no load can reach this section, so it is not shown\n";
    EXPECT_EQ(Run({"show", "--all-languages", "-", "ABCD"},
                  "QVLANG=\nABCD=1\nQVLANG=en\nABCD=2\nQVLANG=EN\nABCD=3\nQVLANG=\nABCD=4\n"
                  " QVLANG=de\nABCD=5\n"),
              0);
    EXPECT_EQ(m_out, "\"\": ABCD=\"1\"\nen: ABCD=\"2\"\n");
    EXPECT_EQ(m_err, "-:5: warning: " + unreachable + "-:7: warning: " + unreachable +
                         "-:9: warning: this looks like the header of section 'de' but is not read "
                         "as one: blanks come before it\n");
    EXPECT_EQ(Run({"show", "--all-languages", "-", "ABCD"}, "ABCD=1\n"), 1);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(m_err, "-: error: the file has no section\n");
}

TEST_F(Show, TakesOneLanguageOrAll) {
    EXPECT_EQ(Run({"show", "--all-languages", "--language", "en", "-"}, "QVLANG=en\n"), 2);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(m_err, "orva-strings: error: --all-languages excludes --language (see --help)\n");
}

TEST_F(Show, NamesTheNearestKeys) {
    const std::string file =
        "QVLANG=en\nTITLE =1\n\tTITLE=1\nMENU_OPEN=1\nMENU_OPEN=2\nMENU_NEW=1\nABCD=1\n"
        "QVLANG=de\nOTHER=1\n";
    const std::pair<const char*, const char*> cases[] = {
        {"TITLE", "; did you mean 'TITLE ' or '\\tTITLE'?"},
        {"menu_open", "; did you mean 'MENU_OPEN'?"},
        {"MENU_OPAN", "; did you mean 'MENU_OPEN'?"},
        {"MENU_NWE", "; did you mean 'MENU_NEW'?"},
        {"OTHER", ""},
        {"ABCDEFG", ""},
    };
    for (const auto& [key, text] : cases) {
        EXPECT_EQ(Run({"show", "-", key, "ABCD"}, file), 1);
        EXPECT_EQ(m_out, "ABCD=\"1\"\n");
        EXPECT_EQ(m_err, "-: error: " + std::string(key) + kNoKey + text + "\n");
    }
    EXPECT_EQ(Run({"show", "-", "ABCE", "XXXX", "ABCE"}, file), 1);
    const std::string near = "-: error: ABCE" + kNoKey + "; did you mean 'ABCD'?\n";
    EXPECT_EQ(m_err, near + "-: error: XXXX" + kNoKey + "\n" + near);
}

TEST_F(Show, SaysWhatMayHaveBeenMeantByASection) {
    const std::string lost = ": warning: this looks like the header of section '";
    const std::string mark = "' but is not read as one: a byte-order mark comes right before it\n";
    const std::string file =
        "QVLANG=en\nABCD=1\nQVLANG=Deutsch \nABCD=2\n\xEF\xBB\xBFQVLANG=fr\nABCD=3\n";
    EXPECT_EQ(Run({"show", "--language", "Deutsch", "-"}, file), 1);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(m_err, "-: error: there is no section Deutsch; did you mean 'Deutsch '?\n-:5" + lost +
                         "fr" + mark);
    EXPECT_EQ(Run({"show", "--language", "Deutsch", "--fallback", "-", "ABCD"}, file), 0);
    EXPECT_EQ(m_out, "ABCD=\"1\"\n");
    EXPECT_EQ(m_err,
              "-: note: there is no section Deutsch, so this is the first section; did you mean "
              "'Deutsch '?\n-:5" +
                  lost + "fr" + mark);
    EXPECT_EQ(Run({"show", "--language", "de", "-"}, file), 1);
    EXPECT_EQ(m_err, "-: error: there is no section de\n-:5" + lost + "fr" + mark);
    EXPECT_EQ(Run({"show", "--language", "DE", "-"},
                  "QVLANG=English\n# orva: language en\nQVLANG=Deutsch\n# x\n# orva: language de\n"
                  "ABCD=1\n# orva: language DE\n"),
              1);
    EXPECT_EQ(m_err, "-: error: there is no section DE; did you mean 'Deutsch'?\n")
        << "by its language code";
    EXPECT_EQ(Run({"show", "--language", "en", "-", "ABCD"}, file), 0);
    EXPECT_EQ(m_err, "") << "nothing was looked for in vain";

    EXPECT_EQ(Run({"show", "-"}, "\xEF\xBB\xBFQVLANG=en\nABCD=1\n"), 1);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(m_err, "-: error: the file has no section\n-:1" + lost + "en" + mark);
}

TEST_F(Show, DecodesWithAnotherKey) {
    const Bytes key = WriteKey("key");
    const std::string file = "QVLANG=en\nMENU=\"x\"\nIDE_A=\"" + Stored("other", key) +
                             "\"\nIDE_B=\"" + StoredHere("own") + "\"\nIDE_C=\"" +
                             Stored("a\0b"s, key) + "\"\nIDE_D=text\nQVLANG=de\nIDE_A=\"" +
                             Stored("andere", key) + "\"\n";
    const std::string decode =
        ": the value does not decode: it was damaged or made with another key\n";
    const std::string readable = ": the value is not protected, so the library answers null\n";
    EXPECT_EQ(Run({"show", "--reveal", "--key-file", Path("key"), "-"}, file), 1);
    EXPECT_EQ(m_out, "IDE_A=\"other\"\nIDE_C=\"a\"\nMENU=\"x\"\nQVLANG=\"en\"\n");
    EXPECT_EQ(m_err, "-:4: error: IDE_B" + decode + "-:6: error: IDE_D" + readable);
    EXPECT_EQ(Run({"show", "--reveal", "-"}, file), 1);
    EXPECT_EQ(m_out, "IDE_B=\"own\"\nMENU=\"x\"\nQVLANG=\"en\"\n");
    EXPECT_EQ(m_err, "-:3: error: IDE_A" + decode + "-:5: error: IDE_C" + decode +
                         "-:6: error: IDE_D" + readable);
    EXPECT_EQ(Run({"show", "--key-file", Path("key"), "--all-languages", "-", "IDE_A"}, file), 0);
    EXPECT_EQ(m_out, "en: IDE_A=(protected)\nde: IDE_A=(protected)\n");
    const std::string named = Write("x", file);
    EXPECT_EQ(
        Run({"show", "--key-file", "-", "--all-languages", "--reveal", named, "IDE_A"}, ToHex(key)),
        0);
    EXPECT_EQ(m_out, "en: IDE_A=\"other\"\nde: IDE_A=\"andere\"\n");
    EXPECT_EQ(m_err, "");
    EXPECT_EQ(Run({"show", "--key-file", Path("missing"), named}), 2);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(Run({"show", "--key-file", "-", "-"}, file), 2);
    EXPECT_NE(m_err.find("- is standard input, which can be read only once"), std::string::npos);
}

TEST_F(Show, WritesJson) {
    const std::string file = "QVLANG=en\nMENU=\"a\\nb\xFF\x1B\x7F\xC2\x9B\xC3\xA9\"\nIDE_A=\"" +
                             StoredHere("secret") + "\"\nIDE_B=text\nQVLANG=de \n";
    const std::string ide = "{\"key\":\"IDE_B\",\"protected\":true,\"text\":null},\n";
    const std::string rest =
        "{\"key\":\"MENU\",\"protected\":false,"
        "\"text\":\"a\\nb\\ufffd\\u001b\\u007f\\u009b\\u00e9\"},\n"
        "{\"key\":\"QVLANG\",\"protected\":false,\"text\":\"en\"}]}";
    const std::string begin =
        "{\"version\":1,\"file\":\"-\",\"sections\":[\n"
        "{\"name\":\"en\",\"line\":1,\"answers\":[\n";
    const std::string error =
        "-:4: error: IDE_B: the value is not protected, so the library answers null\n";
    EXPECT_EQ(Run({"show", "--format", "json", "-"}, file), 1);
    EXPECT_EQ(m_out, begin + "{\"key\":\"IDE_A\",\"protected\":true},\n" + ide + rest + "]}\n");
    EXPECT_EQ(m_err, error);
    EXPECT_EQ(Run({"show", "--format", "json", "--reveal", "-"}, file), 1);
    EXPECT_EQ(m_out, begin + "{\"key\":\"IDE_A\",\"protected\":true,\"text\":\"secret\"},\n" + ide +
                         rest + "]}\n");
    EXPECT_EQ(Run({"show", "--format", "json", "--all-languages", "-", "QVLANG", "MENU"}, file), 1);
    EXPECT_EQ(m_out, begin + "{\"key\":\"QVLANG\",\"protected\":false,\"text\":\"en\"},\n" +
                         rest.substr(0, rest.find(",\n")) +
                         "]},\n{\"name\":\"de \",\"line\":5,\"answers\":[\n"
                         "{\"key\":\"QVLANG\",\"protected\":false,\"text\":\"de \"},\n"
                         "{\"key\":\"MENU\",\"protected\":false,\"text\":null}]}]}\n");
    EXPECT_EQ(m_err, "-:5: error: MENU" + kNoKey + " 'de '\n");
    EXPECT_EQ(nlohmann::json::parse(m_out)["sections"].size(), 2U);

    EXPECT_EQ(Run({"show", "--format", "json", "--language", "fr", "-"}, file), 1);
    EXPECT_EQ(m_out, "{\"version\":1,\"file\":\"-\",\"sections\":[]}\n");
    EXPECT_EQ(m_err, "-: error: there is no section fr\n");
    EXPECT_EQ(Run({"show", "--format", "xml", "-"}, file), 2);
    EXPECT_EQ(m_out, "");
}

TEST_F(Show, CallsStandardInputByAnotherName) {
    const std::string file = Write("-", "QVLANG=en\nABCD=1\n");
    EXPECT_EQ(Run({"show", "--stdin-name", "a\nb", "-", "NONE"}, "QVLANG=en\n"), 1);
    EXPECT_EQ(m_err, "a\\nb: error: NONE" + kNoKey + "\n");
    EXPECT_EQ(
        Run({"show", "--stdin-name", "a\nb", "--format", "json", "-", "QVLANG"}, "QVLANG=en\n"), 0);
    EXPECT_EQ(nlohmann::json::parse(m_out)["file"], "a\nb");
    EXPECT_EQ(Run({"show", "--stdin-name", "a", file, "NONE"}), 1);
    EXPECT_EQ(m_err, file + ": error: NONE" + kNoKey + "\n");
}

}  // namespace
