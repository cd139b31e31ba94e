// The command sections, run in this process. Its output is compared whole.
#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/tools/ToolTest.h"

using namespace std::string_literals;  // for texts that hold NUL bytes

namespace {

const std::string kHeading = "  LINE  ENTRIES  PROTECTED  SECTION\n";

class Sections : public ToolTest {};

TEST_F(Sections, ListsSeveralFiles) {
    const std::string one = Write("one", "QVLANG=en\nABCD=1\nQVLANG=de\nIDE_A=1\nIDE_A=2\n");
    const std::string two = Write("longer\n", "\n\nQVLANG=fr\n");
    EXPECT_EQ(Run({"sections", one, two, "-"}, "QVLANG=it"), 0);
    const std::string shown = Path("longer\\n");
    const auto padded = [&](std::string name) {
        name.resize(shown.size(), ' ');
        return name;
    };
    EXPECT_EQ(m_out, padded("FILE") + kHeading +                             //
                         padded(one) + "     1        2          0  en\n" +  //
                         padded(one) + "     3        2          1  de\n" +  //
                         shown + "     3        1          0  fr\n" +        //
                         padded("-") + "     1        1          0  it\n");
    EXPECT_EQ(m_err, "");
}

TEST_F(Sections, FindsFaultsInOneFileOfSeveral) {
    const std::string good = Write("good", "QVLANG=en\n");
    const std::string bad = Write("bad", "ABCD=1\n");
    for (const auto& files : std::vector<std::vector<std::string>>{{good, bad}, {bad, good}}) {
        EXPECT_EQ(Run({"sections", files[0], files[1]}), 1);
        EXPECT_EQ(m_out, std::string("FILE").append(good.size() - 4, ' ') + kHeading + good +
                             "     1        1          0  en\n");
        EXPECT_EQ(m_err, bad + ": error: the file has no section\n");
    }
}

TEST_F(Sections, GoesOnAfterAFileThatItCannotRead) {
    const std::string good = Write("good", "QVLANG=en\n");
    const std::string bad = Write("bad", "ABCD=1\n");
    EXPECT_EQ(Run({"sections", Path("missing"), bad, good}), 2);
    const std::string name = good + std::string(Path("missing").size() - good.size(), ' ');
    EXPECT_EQ(m_out, std::string("FILE").append(name.size() - 4, ' ') + kHeading + name +
                         "     1        1          0  en\n");
    EXPECT_EQ(m_err, "orva-strings: error: " + Path("missing") + ": No such file or directory\n" +
                         bad + ": error: the file has no section\n");
    EXPECT_EQ(Run({"sections", "--format", "json", Path("missing"), good}), 2);
    const auto files = nlohmann::json::parse(m_out).at("files");
    ASSERT_EQ(files.size(), 1U);
    EXPECT_EQ(files[0].at("file"), good);
}

TEST_F(Sections, AlignsFilesOfShortNames) {
    EXPECT_EQ(Run({"sections", "-", "/dev/null"}, "QVLANG=en\n"), 1);
    EXPECT_EQ(m_out, "FILE     " + kHeading + "-             1        1          0  en\n");
    EXPECT_EQ(m_err, "/dev/null: error: the file has no section\n");
    EXPECT_EQ(Run({"sections", "--stdin-name", "a", "-"}, "QVLANG=en\n"), 0);
    EXPECT_EQ(m_out, kHeading + "     1        1          0  en\n");
}

TEST_F(Sections, ReadsStandardInputOnceUnderAName) {
    const std::string file = Write("-", "QVLANG=en\n");
    EXPECT_EQ(Run({"sections", "-", file, "-"}), 2);
    EXPECT_EQ(m_err, "orva-strings: error: - is standard input, which can be read only once\n");
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(Run({"sections", "--stdin-name", "Editor\n", "-"}, "ABCD=1\n"), 1);
    EXPECT_EQ(m_err, "Editor\\n: error: the file has no section\n");
    EXPECT_EQ(Run({"sections", "--stdin-name", "Editor", file}), 0) << "it has a name of its own";
    EXPECT_EQ(Run({"sections", "--stdin-name", "", "-"}), 2);
    EXPECT_EQ(m_err, "orva-strings: error: --stdin-name: the name is empty (see --help)\n");
}

TEST_F(Sections, ShowsBlanksAtTheEndsOfNames) {
    EXPECT_EQ(Run({"sections", "-"},
                  "QVLANG=en\nQVLANG=en \nQVLANG= en\nQVLANG=\ten\n"
                  "QVLANG=a b\nQVLANG=\"a \"\nQVLANG= \nQVLANG=\n"),
              0);
    EXPECT_EQ(m_out, kHeading +                                      //
                         "     1        1          0  en\n"          //
                         "     2        1          0  \"en \"\n"     //
                         "     3        1          0  \" en\"\n"     //
                         "     4        1          0  \\ten\n"       //
                         "     5        1          0  a b\n"         //
                         "     6        1          0  \\\"a \\\"\n"  //
                         "     7        1          0  \" \"\n"       //
                         "     8        1          0  \"\"  (unreachable)\n");
    EXPECT_EQ(m_err, "");
}

// Whether a load by its own name takes a section is what the library does, not what is said here.
TEST_F(Sections, MarksWhatNoLoadCanReach) {
    const std::string first[] = {"", "en"};
    for (const std::string& name : first) {
        std::vector<std::string> names = {name,     "en",   "EN",       "en ",      "de",
                                          "dE\0x"s, "\0x"s, "",         "@",        "`",
                                          "[",      "{",    "\xC3\x84", "\xC3\xA4", "eN"};
        std::string file;
        for (std::size_t i = 0; i < names.size(); ++i) {
            file += "QVLANG=" + names[i] + "\nPLACE=" + std::to_string(i) + "\n";
        }
        EXPECT_EQ(Run({"sections", "--format", "json", "-"}, file), 0);
        const auto sections = nlohmann::json::parse(m_out)["files"][0]["sections"];
        ASSERT_EQ(sections.size(), names.size());
        std::size_t unreachable = 0;
        for (std::size_t i = 0; i < names.size(); ++i) {
            const std::string requested = names[i].substr(0, names[i].find('\0'));
            EXPECT_EQ(Run({"show", "--language", requested, "-", "PLACE"}, file), 0) << m_err;
            const bool isReached = m_out == "PLACE=\"" + std::to_string(i) + "\"\n";
            EXPECT_EQ(sections[i]["reachable"], isReached) << i << ' ' << m_out;
            unreachable += isReached ? 0 : 1;
        }
        EXPECT_EQ(unreachable, name.empty() ? 5U : 6U);
    }
}

TEST_F(Sections, ReportsLostHeaders) {
    const std::string before =
        "this looks like the header of section 'de' but is not read as one: ";
    const std::string mark = before + "a byte-order mark comes right before it\n";
    const std::string carriage =
        before + "it follows a carriage return, which does not end a line\n";
    const std::string blanks = before + "blanks come before it\n";
    const std::string equals = before + "blanks come before its equals sign\n";
    const std::string letters = before + "QVLANG must be in capital letters\n";
    const std::string misspelt = before + "QVLANG is misspelt\n";
    const struct {
        std::string line;
        std::string error;
    } cases[] = {
        {"\xEF\xBB\xBFQVLANG=de", mark},
        {"\xEF\xBB\xBF\xEF\xBB\xBFQVLANG=de", mark},
        {"//\rQVLANG=de", carriage},
        {"//\rQVLANG=de\rABCD=1", carriage},
        {" QVLANG=de", blanks},
        {"\tQVLANG= \"de\" ", blanks},
        {"\xEF\xBB\xBF QVLANG=de", blanks},
        {"QVLANG =de", equals},
        {" QVLANG\t= de", equals},
        {"Qvlang=de", letters},
        {"QVLNAG=de", misspelt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line);
        for (const std::string end : {"\n", "\r\n"}) {
            EXPECT_EQ(Run({"sections", "-"}, "QVLANG=en" + end + c.line + end), 1);
            EXPECT_EQ(m_err, "-:2: error: " + c.error);
            EXPECT_EQ(m_out, kHeading + "     1        2          0  en\n") << "it is an entry";
            // In front of the first section, too.
            EXPECT_EQ(Run({"sections", "-"}, c.line + end + "QVLANG=en" + end), 1);
            EXPECT_EQ(m_err, "-:1: error: " + c.error);
            EXPECT_EQ(m_out, kHeading + "     2        1          0  en\n");
            EXPECT_EQ(Run({"sections", "-"}, c.line + end), 1);
            EXPECT_EQ(m_err, "-: error: the file has no section\n-:1: error: " + c.error);
            EXPECT_EQ(m_out, "");
        }
    }
    // These may be entries, or are none.
    EXPECT_EQ(Run({"sections", "-"}, "QVLANG=en\nQVLAND=de\n"), 0);
    EXPECT_EQ(m_err, "-:2: warning: " + misspelt);
    EXPECT_EQ(
        Run({"sections", "-"}, "QVLANG=en\n// QVLANG=de\nQVLANG\nVLAN=de\nIDE_A=1\rIDE_B=1\n"), 0);
    EXPECT_EQ(m_err, "");
}

TEST_F(Sections, WritesJson) {
    const std::string two = Write("two\xFF\n", "QVLANG=\xC3\xA9\xFF\x1B\x7F\xC2\x9B\"\n");
    EXPECT_EQ(Run({"sections", "--format=json", "--stdin-name", "x\"y", "-", two},
                  "QVLANG=en\nABCD=1\nIDE_A=1\nQVLANG=EN \nQVLANG=EN\n"),
              0);
    std::string name = nlohmann::json(Path("two")).dump();
    name.pop_back();
    EXPECT_EQ(m_out,
              "{\"version\":1,\"files\":[\n"
              "{\"file\":\"x\\\"y\",\"sections\":[\n"
              "{\"name\":\"en\",\"line\":1,\"entries\":3,\"protected\":1,\"reachable\":true},\n"
              "{\"name\":\"EN \",\"line\":4,\"entries\":1,\"protected\":0,\"reachable\":true},\n"
              "{\"name\":\"EN\",\"line\":5,\"entries\":1,\"protected\":0,\"reachable\":false}]},\n"
              "{\"file\":" +
                  name +
                  "\\ufffd\\n\",\"sections\":[\n"
                  "{\"name\":\"\\u00e9\\ufffd\\u001b\\u007f\\u009b\\\"\",\"line\":1,\"entries\":1,"
                  "\"protected\":0,\"reachable\":true}]}]}\n");
    EXPECT_EQ(m_err, "");
    EXPECT_EQ(nlohmann::json::parse(m_out)["version"], 1);

    EXPECT_EQ(Run({"sections", "--format", "json", "-"}, "ABCD=1\n"), 1);
    EXPECT_EQ(m_out, "{\"version\":1,\"files\":[\n{\"file\":\"-\",\"sections\":[]}]}\n");
    EXPECT_EQ(m_err, "-: error: the file has no section\n");
    EXPECT_EQ(Run({"sections", "--format", "json", Path("missing")}), 2);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(Run({"sections", "--format", "text", "-"}, "QVLANG=en\n"), 0);
    EXPECT_EQ(m_out, kHeading + "     1        1          0  en\n");
}

TEST_F(Sections, RefusesOtherFormats) {
    for (const std::string format : {"", "xml", "JSON", "text|json", "json\n", "[]", "|"}) {
        EXPECT_EQ(Run({"sections", "--format=" + format, "-"}, "QVLANG=en\n"), 2) << format;
        EXPECT_EQ(m_err, "orva-strings: error: --format: must be one of text|json (see --help)\n");
        EXPECT_EQ(m_out, "");
    }
}

}  // namespace
