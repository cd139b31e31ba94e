// The command fix, and what protect, reveal and rekey say about what they change.
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/tools/ToolTest.h"
#include "tools/orva-strings/system/Files.h"

namespace {

const char kBroken[] =
    "\xEF\xBB\xBFQVLANG=\"English\"\n"
    "MENU_OPEN =\"Open\"\n"
    "MENU_QUIT=\"Quit\"\n"
    "MENU_QUIT=\"Quit\"\n"
    " qvlang=Deutsch\n"
    "MENU_QUIT=\"Beenden\"\n";

const char kFixed[] =
    "QVLANG=English\n"
    "MENU_OPEN=\"Open\"\n"
    "MENU_QUIT=\"Quit\"\n"
    "QVLANG=Deutsch\n"
    "MENU_QUIT=\"Beenden\"\n";

const char kHunk[] =
    "@@ -1,6 +1,5 @@\n"
    "-\xEF\xBB\xBFQVLANG=\"English\"\n"
    "+QVLANG=English\n"
    "-MENU_OPEN =\"Open\"\n"
    "+MENU_OPEN=\"Open\"\n"
    " MENU_QUIT=\"Quit\"\n"
    "-MENU_QUIT=\"Quit\"\n"
    "- qvlang=Deutsch\n"
    "+QVLANG=Deutsch\n"
    " MENU_QUIT=\"Beenden\"\n";

const char kConflict[] = "QVLANG=en\n<<<<<<< HEAD\n ABCD=1\n";

class OrvaStringsFix : public ToolTest {};

TEST_F(OrvaStringsFix, MendsAFileInPlaceAndSaysWhatItChanged) {
    const std::string file = Write("x", kBroken);
    EXPECT_EQ(Run({"fix", file}), 0);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(m_err, file + ": mended 3 lines and removed 1 duplicate\n");
    EXPECT_EQ(ReadFile(file), kFixed);

    const auto written = std::filesystem::last_write_time(file);
    std::filesystem::permissions(
        m_folder.Path(), std::filesystem::perms::owner_exec | std::filesystem::perms::owner_read);
    EXPECT_EQ(Run({"fix", file}), 0);
    EXPECT_EQ(m_out + m_err, "") << "nothing to say if nothing changes";
    EXPECT_EQ(std::filesystem::last_write_time(file), written);
    EXPECT_EQ(Run({"fix", file}), 0);
    EXPECT_EQ(m_out + m_err, "") << "nothing to say if nothing changes";
    EXPECT_EQ(std::filesystem::last_write_time(file), written);
}

TEST_F(OrvaStringsFix, SaysWhatItChangedInPlainWords) {
    const struct {
        const char* bytes;
        const char* would;
        const char* did;
    } cases[] = {
        {" QVLANG=en\n", "would mend 1 line", "mended 1 line"},
        {" QVLANG=en\n ABCD=1\n", "would mend 2 lines", "mended 2 lines"},
        {"QVLANG=en\nABCD=1\nABCD=1\n", "would remove 1 duplicate", "removed 1 duplicate"},
        {"QVLANG=en\nABCD=1\nABCD=1\nABCD=1\n", "would remove 2 duplicates",
         "removed 2 duplicates"},
        {"QVLANG=en\rABCD=1", "would replace the carriage returns by line feeds",
         "replaced the carriage returns by line feeds"},
        {"QVLANG=en\r ABCD=1\rABCDE=1\rABCDE=1",
         "would replace the carriage returns by line feeds, mend 1 line and remove 1 duplicate",
         "replaced the carriage returns by line feeds, mended 1 line and removed 1 duplicate"},
    };
    for (const auto& c : cases) {
        const std::string file = Write("x", c.bytes);
        EXPECT_EQ(Run({"fix", "--check", file}), 1);
        EXPECT_EQ(m_out, "");
        EXPECT_EQ(m_err, file + ": " + c.would + "\n");
        EXPECT_EQ(ReadFile(file), c.bytes);
        EXPECT_EQ(Run({"fix", file}), 0);
        EXPECT_EQ(m_out, "");
        EXPECT_EQ(m_err, file + ": " + c.did + "\n");
        EXPECT_EQ(Run({"fix", "--check", file}), 0);
        EXPECT_EQ(m_out + m_err, "");
    }
}

TEST_F(OrvaStringsFix, ShowsADiff) {
    std::filesystem::current_path(m_folder.Path());  // so that the names have no blanks
    const std::string file = "x";
    Write(file, kBroken);
    const std::string diff = std::string("--- x\n+++ x (fixed)\n") + kHunk;
    EXPECT_EQ(Run({"fix", "--diff", file}), 1);
    EXPECT_EQ(m_out, diff);
    EXPECT_EQ(m_err, "");
    EXPECT_EQ(ReadFile(file), kBroken);
    EXPECT_EQ(Run({"fix", "--diff", "--check", file}), 1);
    EXPECT_EQ(m_out, diff);
    EXPECT_EQ(m_err, "");
    EXPECT_EQ(ReadFile(file), kBroken);

    Write("y", kFixed);
    EXPECT_EQ(Run({"fix", "--diff", "y"}), 0);
    EXPECT_EQ(m_out + m_err, "");
    EXPECT_EQ(Run({"fix", "--diff", "y", file}), 1);
    EXPECT_EQ(m_out, diff);
    std::filesystem::current_path("/");
}

TEST_F(OrvaStringsFix, IsAFilterForStandardInput) {
    EXPECT_EQ(Run({"fix", "-"}, kBroken), 0);
    EXPECT_EQ(m_out, kFixed);
    EXPECT_EQ(m_err, "");
    EXPECT_EQ(Run({"fix", "-"}, kFixed), 0);
    EXPECT_EQ(m_out, kFixed);
    EXPECT_EQ(m_err, "");
    EXPECT_EQ(Run({"fix", "--check", "-"}, kBroken), 1);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(m_err, "-: would mend 3 lines and remove 1 duplicate\n");
    EXPECT_EQ(Run({"fix", "--diff", "-"}, kBroken), 1);
    EXPECT_EQ(m_out, std::string("--- -\n+++ - (fixed)\n") + kHunk);
    EXPECT_EQ(Run({"fix", "-"}, kConflict), 1);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(m_err, "-:2: error: git left a conflict here: resolve it first\n");
    EXPECT_EQ(Run({"fix", "-", "-"}, kBroken), 2);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(m_err, "orva-strings: error: - is standard input, which can be read only once\n");
}

TEST_F(OrvaStringsFix, MendsEveryFileThatItCan) {
    const std::string first = Write("first", " QVLANG=en\n");
    const std::string conflict = Write("conflict", kConflict);
    const std::string utf16 = Write("utf16", "\xFF\xFEQ");
    const std::string missing = Path("missing");
    const std::string last = Write("last", " QVLANG=en\n");
    EXPECT_EQ(Run({"fix", first, conflict, utf16, missing, last}), 2);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(m_err,
              first + ": mended 1 line\n" + conflict +
                  ":2: error: git left a conflict here: resolve it first\n" + utf16 +
                  ": error: the file is in UTF-16, which the library can't read: convert it to "
                  "UTF-8\n"
                  "orva-strings: error: " +
                  missing + ": No such file or directory\n" + last + ": mended 1 line\n");
    EXPECT_EQ(ReadFile(first), "QVLANG=en\n");
    EXPECT_EQ(ReadFile(conflict), kConflict);
    EXPECT_EQ(ReadFile(utf16), "\xFF\xFEQ");
    EXPECT_EQ(ReadFile(last), "QVLANG=en\n");
    EXPECT_EQ(Run({"fix", conflict, first}), 1);
}

TEST_F(OrvaStringsFix, EscapesTheNameOfTheFile) {
    const std::string file = Write("a\x1B[1m\nb", " QVLANG=en\n");
    const std::string shown = Path("a\\x1B[1m\\nb");
    EXPECT_EQ(Run({"fix", "--check", file}), 1);
    EXPECT_EQ(m_err, shown + ": would mend 1 line\n");
    EXPECT_EQ(Run({"fix", "--diff", file}), 1);
    EXPECT_EQ(m_out.substr(0, shown.size() + 4), "--- " + shown);
    EXPECT_EQ(Run({"fix", file}), 0);
    EXPECT_EQ(m_err, shown + ": mended 1 line\n");
}

TEST_F(OrvaStringsFix, NeedsAFile) {
    EXPECT_EQ(Run({"fix"}), 2);
    EXPECT_EQ(m_err, "orva-strings: error: FILE is required (see --help)\n");
    EXPECT_EQ(Run({"fix", "--diff", ""}), 2);
    EXPECT_EQ(Run({"fix", m_folder.Path()}), 2);
    EXPECT_EQ(m_err, "orva-strings: error: " + m_folder.Path().string() + ": Is a directory\n");
}

class OrvaStringsChange : public OrvaStringsFix {
protected:
    OrvaStringsChange() {
        Write("old.key", std::string(64, '1'));
        Write("new.key", std::string(64, '2'));
    }

    const std::string m_oldKey = Path("old.key");
    const std::string m_newKey = Path("new.key");
};

TEST_F(OrvaStringsChange, SaysHowManyEntriesItProtected) {
    const std::string file =
        Write("x", "IDE\nQVLANG=en\nIDE_A=\"1\"\nMENU=2\nQVLANG=de\nIDE_A=\"1\"\n");
    const std::string out = Path("out");
    const std::vector<std::string> protect = {"protect", "--key-file", m_oldKey};
    const auto run = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), protect.begin(), protect.end());
        return Run(arguments);
    };
    EXPECT_EQ(run({"-o", out, file}), 0);
    EXPECT_EQ(m_err, out + ": protected 2 entries\n");
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(run({"--in-place", file}), 0);
    EXPECT_EQ(m_err, file + ": protected 2 entries\n");
    EXPECT_EQ(run({"--in-place", file}), 0);
    EXPECT_EQ(m_err, file + ": protected 0 entries, 2 were already\n");
    Write("x", ReadFile(file) + "IDE_B=3\n");
    EXPECT_EQ(run({"--in-place", file}), 0);
    EXPECT_EQ(m_err, file + ": protected 1 entry, 2 were already\n");
    Write("x", "QVLANG=en\n");
    EXPECT_EQ(run({"--in-place", file}), 0);
    EXPECT_EQ(m_err, file + ": protected 0 entries\n");
    // A result on standard output speaks for itself.
    EXPECT_EQ(run({out}), 0);
    EXPECT_EQ(m_err, "");
    EXPECT_EQ(run({"-o", "-", out}), 0);
    EXPECT_EQ(m_err, "");
}

TEST_F(OrvaStringsChange, SaysHowManyEntriesItRevealedOrRekeyed) {
    const std::string file = Write("x", "QVLANG=en\nIDE_A=\"1\"\n");
    ASSERT_EQ(Run({"protect", "--key-file", m_oldKey, "--in-place", file}), 0);
    Write("x", ReadFile(file) + "IDE_B=\"2\"\n");
    EXPECT_EQ(Run({"rekey", "--from", m_oldKey, "--to", m_newKey, "--in-place", file}), 0);
    EXPECT_EQ(m_err, file + ": rekeyed 1 entry, 1 was not stored with the old key\n");
    EXPECT_EQ(Run({"rekey", "--from", m_oldKey, "--to", m_newKey, "--in-place", file}), 0);
    EXPECT_EQ(m_err, file + ": rekeyed 0 entries, 2 were not stored with the old key\n");
    EXPECT_EQ(Run({"reveal", "--key-file", m_newKey, "--in-place", file}), 0);
    EXPECT_EQ(m_err, file + ": revealed 1 entry, 1 was already readable\n");
    EXPECT_EQ(Run({"reveal", "--key-file", m_newKey, "--in-place", file}), 0);
    EXPECT_EQ(m_err, file + ": revealed 0 entries, 2 were already readable\n");
    EXPECT_EQ(ReadFile(file), "QVLANG=en\nIDE_A=\"1\"\nIDE_B=\"2\"\n");
}

TEST_F(OrvaStringsChange, ChecksWithoutWriting) {
    const char readable[] = "QVLANG=en\nIDE_A=\"1\"\n";
    const std::string file = Write("x", readable);
    const std::string stored = Path("stored");
    ASSERT_EQ(Run({"protect", "--key-file", m_oldKey, "-o", stored, file}), 0);
    const std::string storedBytes = ReadFile(stored);
    const std::string unwritten = Path("unwritten");
    const struct {
        std::vector<std::string> arguments;
        int status;
        std::string err;
    } cases[] = {
        {{"protect", "--key-file", m_oldKey, file}, 1, file + ": would protect 1 entry\n"},
        {{"protect", "--key-file", m_oldKey, "--in-place", file},
         1,
         file + ": would protect 1 entry\n"},
        {{"protect", "--key-file", m_oldKey, "-o", unwritten, file},
         1,
         file + ": would protect 1 entry\n"},
        {{"protect", "--key-file", m_oldKey, stored}, 0, ""},
        {{"protect", "--key-file", m_newKey, stored},
         1,
         stored +
             ":2: error: IDE_A: the value looks stored but does not decode: it was damaged or made "
             "with another key\n"},
        {{"rekey", "--from", m_oldKey, "--to", m_newKey, stored},
         1,
         stored + ": would rekey 1 entry\n"},
        {{"rekey", "--from", m_newKey, "--to", m_oldKey, stored}, 0, ""},
        {{"rekey", "--from", m_oldKey, "--to", m_newKey, file}, 0, ""},
        {{"reveal", "--key-file", m_oldKey, stored}, 1, stored + ": would reveal 1 entry\n"},
        {{"reveal", "--key-file", m_oldKey, file}, 0, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.arguments));
        std::vector<std::string> arguments = c.arguments;
        arguments.emplace_back("--check");
        EXPECT_EQ(Run(arguments), c.status);
        EXPECT_EQ(m_out, "");
        EXPECT_EQ(m_err, c.err);
        EXPECT_EQ(ReadFile(file), readable);
        EXPECT_EQ(ReadFile(stored), storedBytes);
        EXPECT_FALSE(std::filesystem::exists(unwritten));
    }
    EXPECT_EQ(Run({"protect", "--check", "--key-file", m_oldKey, "-"}, readable), 1);
    EXPECT_EQ(m_err, "-: would protect 1 entry\n");
    EXPECT_EQ(Run({"protect", "--check", file}), 1);
    EXPECT_EQ(m_err.substr(m_err.find('\n') + 1), file + ": would protect 1 entry\n")
        << "what is found is said as usual";
}

}  // namespace
