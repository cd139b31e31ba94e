// The command sync.
#include <cstddef>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/tools/ToolTest.h"
#include "tools/orva-strings/system/Files.h"

namespace {

const char kUnsynced[] =
    "QVLANG=en\n"
    "AAAA=\"1\"\n"
    "BBBB=\"2\"\n"
    "CCCC=\"3\"\n"
    "QVLANG=de\n"
    "BBBB=\"zwei\"\n"
    "XXXX=\"alt\"\n"
    "AAAA=\"eins\"\n";

const char kSynced[] =
    "QVLANG=en\n"
    "AAAA=\"1\"\n"
    "BBBB=\"2\"\n"
    "CCCC=\"3\"\n"
    "QVLANG=de\n"
    "AAAA=\"eins\"\n"
    "BBBB=\"zwei\"\n"
    "XXXX=\"alt\"\n";

class OrvaStringsSync : public ToolTest {
protected:
    // What the library answers in each section that can be reached.
    std::multiset<std::string> Answers(const std::string& bytes) {
        Run({"show", "--all-languages", "--reveal", Write("answers", bytes)});
        std::istringstream lines(m_out);
        std::multiset<std::string> answers;
        for (std::string line; std::getline(lines, line);) {
            answers.insert(line);
        }
        return answers;
    }
};

TEST_F(OrvaStringsSync, ChangesTheFileAndSaysWhatItChanged) {
    const std::string file = Write("x", kUnsynced);
    EXPECT_EQ(Run({"sync", "--check", file}), 1);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(m_err, file + ": would move 1 entry\n");
    EXPECT_EQ(ReadFile(file), kUnsynced);
    EXPECT_EQ(Run({"sync", file}), 0);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(m_err, file + ": moved 1 entry\n");
    EXPECT_EQ(ReadFile(file), kSynced);
    for (const char* const flag : {"--check", "--diff", "--fill=none"}) {
        EXPECT_EQ(Run({"sync", flag, file}), 0);
        EXPECT_EQ(m_out + m_err, "") << "nothing to say if nothing changes";
    }
    EXPECT_EQ(Run({"sync", "--fill", "reference", "--prune", "--check", file}), 1);
    EXPECT_EQ(m_err, file + ": would add 1 entry and remove 1 entry\n");
    EXPECT_EQ(Run({"sync", "--fill", "reference", file}), 0);
    EXPECT_EQ(m_err, file + ": added 1 entry\n");
    EXPECT_EQ(ReadFile(file), std::string(kSynced) + "CCCC=\"3\"\n");
    EXPECT_EQ(Run({"sync", "--prune", "--fill", "none", Write("x", kUnsynced)}), 0);
    EXPECT_EQ(m_err, file + ": moved 1 entry and removed 1 entry\n");
}

TEST_F(OrvaStringsSync, ShowsADiff) {
    EXPECT_EQ(Run({"sync", "--diff", "--fill", "reference", "-"}, kUnsynced), 1);
    EXPECT_EQ(m_out,
              "--- -\n+++ - (synced)\n"
              "@@ -3,6 +3,7 @@\n"
              " BBBB=\"2\"\n"
              " CCCC=\"3\"\n"
              " QVLANG=de\n"
              "+AAAA=\"eins\"\n"
              " BBBB=\"zwei\"\n"
              " XXXX=\"alt\"\n"
              "-AAAA=\"eins\"\n"
              "+CCCC=\"3\"\n");
    EXPECT_EQ(m_err, "");
    EXPECT_EQ(Run({"sync", "--diff", "-"}, kSynced), 0);
    EXPECT_EQ(m_out + m_err, "");
}

TEST_F(OrvaStringsSync, ShowsChangesTogetherWhoseLinesAroundThemMeet) {
    const auto hunks = [&](int between) {
        std::string reference = "QVLANG=en\nAAAA=1\nBBBB=1\n";
        std::string section = "QVLANG=de\nBBBB=1\nAAAA=1\n";
        for (int i = 0; i < between; ++i) {
            reference += "MMM" + std::to_string(i) + "=1\n";
            section += "MMM" + std::to_string(i) + "=1\n";
        }
        Run({"sync", "--diff", "-"}, reference + "YYYY=1\nZZZZ=1\n" + section + "ZZZZ=1\nYYYY=1\n");
        std::size_t count = 0;
        for (std::size_t i = 0; (i = m_out.find("\n@@ -", i)) != std::string::npos; ++i) {
            ++count;
        }
        return count;
    };
    EXPECT_EQ(hunks(0), 1U);
    EXPECT_EQ(hunks(6), 1U);
    EXPECT_EQ(hunks(7), 2U);
}

TEST_F(OrvaStringsSync, IsAFilterForStandardInput) {
    EXPECT_EQ(Run({"sync", "-"}, kUnsynced), 0);
    EXPECT_EQ(m_out, kSynced);
    EXPECT_EQ(m_err, "");
    EXPECT_EQ(Run({"sync", "--check", "-"}, kUnsynced), 1);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(m_err, "-: would move 1 entry\n");
}

TEST_F(OrvaStringsSync, ChangesTheSectionsThatAreNamed) {
    const std::string other = "QVLANG=fr\nBBBB=2\nAAAA=1\n";
    EXPECT_EQ(Run({"sync", "--language", "de", "-"}, kUnsynced + other), 0);
    EXPECT_EQ(m_out, kSynced + other);
    EXPECT_EQ(Run({"sync", "--language", "de", "--language=fr", "--reference", "fr", "-"},
                  kUnsynced + other),
              0);
    EXPECT_EQ(m_out, kUnsynced + other);
    EXPECT_EQ(Run({"sync", "--language", "dee", "-"}, kUnsynced), 1);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(m_err, "-: error: there is no section dee; did you mean 'de'?\n");
    EXPECT_EQ(Run({"sync", "--fill", "all", "-"}, kUnsynced), 2);
    EXPECT_EQ(Run({"sync", "-", "-"}, kUnsynced), 2);
    EXPECT_EQ(Run({"sync", Path("missing")}), 2);
    EXPECT_EQ(m_err, "orva-strings: error: " + Path("missing") + ": No such file or directory\n");
}

TEST_F(OrvaStringsSync, LeavesAFileThatItCanNotSync) {
    const std::string bytes =
        "QVLANG=en\nAAAA=1\nBBBB=2\nQVLANG=de\n# max=1\nBBBB=2\n# max=2\nAAAA=1\n";
    const std::string file = Write("x", bytes);
    EXPECT_EQ(Run({"sync", file}), 1);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(m_err,
              file +
                  ":7: error: # max: this comment is an entry, since it has an equals sign, and "
                  "would be moved before another one of its key; write it without\n");
    EXPECT_EQ(ReadFile(file), bytes);
}

TEST_F(OrvaStringsSync, CopiesProtectedEntriesAsTheyStand) {
    const std::string key = Write("key", std::string(64, '1'));
    ASSERT_EQ(Run({"protect", "--key-file", key, "-"},
                  "QVLANG=en\nIDE_A=\"secret\"\nIDE_B=\"other\"\nQVLANG=de\nIDE_B=\"anderes\"\n"),
              0);
    const std::string stored = m_out;
    ASSERT_EQ(Run({"sync", "--fill", "reference", "-"}, stored), 0);
    EXPECT_EQ(m_out.find("secret"), std::string::npos);
    const std::string file = Write("filled", m_out);
    EXPECT_EQ(Run({"check", "--shipped", "--key-file", key, "--disable", "same-text", file}), 0)
        << m_out;
    EXPECT_EQ(Run({"show", "--all-languages", "--reveal", "--key-file", key, file}), 0);
    EXPECT_EQ(m_out,
              "en: IDE_A=\"secret\"\nen: IDE_B=\"other\"\nen: QVLANG=\"en\"\n"
              "de: IDE_A=\"secret\"\nde: IDE_B=\"anderes\"\nde: QVLANG=\"de\"\n");
}

TEST_F(OrvaStringsSync, ChangesNoAnswerOfTheLibrary) {
    const std::string bytes =
        "QVLANG=en\nIDE_A=1\nBBBB=2\nBBBB=3\nCCCC=4\n"
        "QVLANG=de\n# BBBB=0\nCCCC=\"\\n\"\nBBBB=5\nXXXX=6\nBBBB=7\nIDE_A=8\nXXXX=9\nIDE_A=1\n"
        "QVLANG=fr\nCCCC =2\nBBBB=\"1\nCCCC=1\nQVLANG=DE\nCCCC=1\nBBBB=2\n";
    ASSERT_EQ(Run({"protect", "-"}, bytes), 0);
    const std::string stored = m_out;
    ASSERT_EQ(Run({"sync", "-"}, stored), 0);
    const std::string synced = m_out;
    EXPECT_NE(synced, stored);
    const auto before = Answers(stored);
    EXPECT_EQ(before.size(), 14U);
    EXPECT_EQ(Answers(synced), before);
}

}  // namespace
