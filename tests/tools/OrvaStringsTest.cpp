// The tool's commands, run in this process. Their output is compared whole.
#include <algorithm>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstddef>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/PipeWriter.h"
#include "tests/support/StoredForm.h"
#include "tests/tools/ToolTest.h"
#include "tools/orva-strings/Tool.h"
#include "tools/orva-strings/cli/Printable.h"
#include "tools/orva-strings/system/Files.h"

using namespace std::string_literals;  // for texts that hold NUL bytes

namespace {

const std::string kDevelopmentKeyNote =
    "orva-strings: note: protecting with the development key, which is public\n";

const char kReadable[] =
    "// IDE_COMMENT=\"stays\"\r\n"
    "QVLANG=en\r\n"
    "MENU_OPEN=\"Open\"\r\n"
    "IDE_TITLE = \"Title\\nline two\" ; note\r\n"
    "IDE_BARE=bare \\n text\n"
    "ide_lower=\"stays\"\n"
    "QVLANG=fr\n"
    "IDE_TITLE=\"\"\n"
    "IDE_TITLE=\"again\"";

std::string ProtectedFile(const Bytes& key) {
    return "// IDE_COMMENT=\"stays\"\r\n"
           "QVLANG=en\r\n"
           "MENU_OPEN=\"Open\"\r\n"
           "IDE_TITLE = \"" +
           Stored("Title\nline two", key) +
           "\" ; note\r\nIDE_BARE=" + Stored("bare \\n text", key) +
           "\nide_lower=\"stays\"\nQVLANG=fr\nIDE_TITLE=\"" + Stored("", key) + "\"\nIDE_TITLE=\"" +
           Stored("again", key) + '"';
}

void ReplaceFile(const std::string& path, const FileSnapshot& before, const char* bytes) {
    ::ReplaceFile(path, before, [&](const TakePiece& take) { take(bytes); });
}

// What protect warns about in it.
std::string NearEntriesOf(const std::string& file) {
    const std::string what =
        ": this looks like a protected entry but is not one; its text stays readable\n";
    return file + ":1: warning: IDE_COMMENT" + what + file + ":6: warning: ide_lower" + what;
}

class OrvaStrings : public ToolTest {
protected:
    // Makes a key file and returns the key.
    Bytes WriteKey(const std::string& name, unsigned first) const {
        Bytes key = CountingBytes(32, first);
        m_folder.Write(name, ToHex(key) + "\n");
        return key;
    }

    std::ptrdiff_t EntriesInFolder() const {
        return std::distance(std::filesystem::directory_iterator(m_folder.Path()), {});
    }
};

TEST_F(OrvaStrings, ProtectsAndRevealsByteForByte) {
    const std::string file = Write("x", kReadable);
    EXPECT_EQ(Run({"protect", file}), 0);
    EXPECT_EQ(m_out, ProtectedFile(DevelopmentKey()));
    EXPECT_EQ(m_err, kDevelopmentKeyNote + NearEntriesOf(file));
    EXPECT_EQ(ReadFile(file), kReadable) << "without --in-place the file stays";

    const std::string stored = Write("y", m_out);
    EXPECT_EQ(Run({"protect", stored}), 0);
    EXPECT_EQ(m_out, ProtectedFile(DevelopmentKey())) << "a second run changes nothing";
    EXPECT_EQ(Run({"protect", "--force", stored}), 0);
    EXPECT_EQ(m_out, ProtectedFile(DevelopmentKey())) << "nor does a forced one";
    EXPECT_EQ(Run({"reveal", stored}), 0);
    EXPECT_EQ(m_out, kReadable);
    EXPECT_EQ(Run({"reveal", file}), 0);
    EXPECT_EQ(m_out, kReadable) << "what is readable stays";
}

TEST_F(OrvaStrings, ReadsStandardInput) {
    EXPECT_EQ(Run({"protect", "-"}, kReadable), 0);
    EXPECT_EQ(m_out, ProtectedFile(DevelopmentKey()));
    EXPECT_EQ(Run({"reveal", "-"}, m_out), 0);
    EXPECT_EQ(m_out, kReadable);
}

const char kBeforeFirst[] = ": this entry is not read, because it comes before the first section\n";
const char kAfterMark[] =
    ": this entry is not read, because a byte-order mark comes right before it\n";
const char kAfterReturn[] =
    ": this entry is not read, because it follows a carriage return, which does not end a line\n";

TEST_F(OrvaStrings, RefusesWhatIsNeverRead) {
    const std::string before = kBeforeFirst;
    const std::string mark = kAfterMark;
    const std::string ret = kAfterReturn;
    const struct {
        std::string bytes;
        std::string errors;
    } cases[] = {
        {"", "-: error: the file has no section\n"},
        {"MENU=\"x\"\n", "-: error: the file has no section\n"},
        {"QVLANG=en\rIDE_X=\"x\"\r", "-:1: error: IDE_X" + ret},
        {"QVLANG=en\rIDE_X=1\rMENU=2\rQVLANG=fr\rIDE_Y=3\r",
         "-:1: error: IDE_X" + ret + "-:1: error: QVLANG" + ret + "-:1: error: IDE_Y" + ret},
        {"QVLANG=en\nMENU=\"x\"\rIDE_X=\"x\"\r\n", "-:2: error: IDE_X" + ret},
        {"QVLANG=en\nMENU=\"x\"\r\rIDE_X=\"x\"\n", "-:2: error: IDE_X" + ret},
        {"// note\r// note\rIDE_X=\"x\"\nQVLANG=en\n", "-:1: error: IDE_X" + ret},
        {"QVLANG=en\r\r\nMENU=\"x\"\r\r\r\n", ""},
        {"QVLANG=en\nMENU=\"a\rb\rMENU=\"\n", ""},
        {"MENU=\"x\"\nIDE_X=\"x\"\nQVLANG=en\n", "-:2: error: IDE_X" + before},
        {"\xEF\xBB\xBFQVLANG=en\nIDE_X=\"x\"\nQVLANG=fr\n",
         "-:1: error: QVLANG" + mark + "-:2: error: IDE_X" + before},
        {"\xEF\xBB\xBFIDE_X=\"x\"\nQVLANG=en\n", "-:1: error: IDE_X" + mark},
        // Like two files joined, the second with a byte order mark.
        {"QVLANG=en\nMENU=\"x\"\n\xEF\xBB\xBFQVLANG=de\nMENU=\"y\"\n", "-:3: error: QVLANG" + mark},
        {"QVLANG=en\nMENU=\"x\"\n\xEF\xBB\xBFIDE_X=\"x\"\n", "-:3: error: IDE_X" + mark},
        {"QVLANG=en\n\xEF\xBB\xBF\xEF\xBB\xBFIDE_X=\"x\"\n", "-:2: error: IDE_X" + mark},
        {"QVLANG=en\n//\r\xEF\xBB\xBFIDE_X=\"x\"\n", "-:2: error: IDE_X" + mark},
        {"QVLANG=en\n\xEF\xBB\xBFMENU=\"x\"\n\xEF\xBB\xBF\n\xEF\xBB\xBF// note\n", ""},
        {"QVLANG=en\nMENU=\"\xEF\xBB\xBFIDE_X=\"\n\xEF\xBBIDEAL\n", ""},
    };
    for (const auto& c : cases) {
        for (const char* command : {"protect", "reveal"}) {
            EXPECT_EQ(Run({command, "-", "--key-file", DEVELOPMENT_KEY}, c.bytes),
                      c.errors.empty() ? 0 : 1)
                << c.bytes;
            EXPECT_EQ(m_out, c.errors.empty() ? c.bytes : "");
            EXPECT_EQ(m_err, c.errors);
        }
    }
}

TEST_F(OrvaStrings, ProtectsEveryLineOfARepeatedKey) {
    EXPECT_EQ(Run({"protect", "--key-file", DEVELOPMENT_KEY, "-"},
                  "QVLANG=en\nIDE_X=\"one\"\nIDE_X=two\nQVLANG=en\nIDE_X=\"three\"\nIDE_X=\"\"\n"),
              0);
    EXPECT_EQ(m_out, "QVLANG=en\nIDE_X=\"" + Stored("one", DevelopmentKey()) +
                         "\"\nIDE_X=" + Stored("two", DevelopmentKey()) + "\nQVLANG=en\nIDE_X=\"" +
                         Stored("three", DevelopmentKey()) + "\"\nIDE_X=\"" +
                         Stored("", DevelopmentKey()) + "\"\n");
    EXPECT_EQ(m_err, "");
}

// The library drops it there, too.
TEST_F(OrvaStrings, KeepsACarriageReturnAtTheEndOfTheFile) {
    const std::string stored =
        "QVLANG=en\nIDE_X=" + Stored("without quotes", DevelopmentKey()) + "\r";
    EXPECT_EQ(
        Run({"protect", "--key-file", DEVELOPMENT_KEY, "-"}, "QVLANG=en\nIDE_X=without quotes\r"),
        0);
    EXPECT_EQ(m_out, stored);
    EXPECT_EQ(Run({"reveal", "-"}, stored), 0);
    EXPECT_EQ(m_out, "QVLANG=en\nIDE_X=without quotes\r");
}

TEST_F(OrvaStrings, RefusesTextBeforeTheFirstQuote) {
    const std::string what =
        "IDE_X: the value begins at the first quote; the text before it stays readable (is the "
        "opening quote missing?)\n";
    const std::string stored = Stored("x", DevelopmentKey());
    const struct {
        std::string entry;
        std::string revealed;
        bool hasTextBefore;
    } cases[] = {
        {"IDE_X=secret\"", "IDE_X=secret\"", true},
        {"IDE_X=secret before \"x\"", "IDE_X=secret before \"x\"", true},
        {"IDE_X=secret \"" + stored + "\"", "IDE_X=secret \"x\"", true},
        {"IDE_X=" + stored + " \"menu\"", "IDE_X=" + stored + " \"menu\"", true},
        {"IDE_X==\"x\"", "IDE_X==\"x\"", true},
        {"IDE_X=\xC2\xA0\"x\"", "IDE_X=\xC2\xA0\"x\"", true},
        {"IDE_X= \t\"" + stored + "\"", "IDE_X= \t\"x\"", false},
        {"IDE_X=\"" + stored, "IDE_X=\"x", false},
        {"IDE_X=\"" + stored + "\" ; after the last quote", "IDE_X=\"x\" ; after the last quote",
         false},
        {"IDE_X=" + stored, "IDE_X=x", false},
    };
    WriteKey("other", 1);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.entry);
        const std::string bytes = "QVLANG=en\n" + c.entry + "\n";
        const std::vector<std::string> commands[] = {
            {"protect", "-", "--key-file", DEVELOPMENT_KEY},
            {"rekey", "-", "--from", Path("other"), "--to", DEVELOPMENT_KEY},
        };
        for (const auto& command : commands) {
            EXPECT_EQ(Run(command, bytes), c.hasTextBefore ? 1 : 0) << command[0];
            EXPECT_EQ(m_out, c.hasTextBefore ? "" : bytes) << command[0];
            EXPECT_EQ(m_err, c.hasTextBefore ? "-:2: error: " + what : "") << command[0];
        }
        EXPECT_EQ(Run({"reveal", "-"}, bytes), 0) << "the way to repair it";
        EXPECT_EQ(m_out, "QVLANG=en\n" + c.revealed + "\n");
        EXPECT_EQ(m_err, c.hasTextBefore ? "-:2: warning: " + what : "");
    }

    const std::string file = Write("x", "QVLANG=en\nIDE_A=\"a\"\nIDE_X=secret\"\n");
    EXPECT_EQ(Run({"protect", "--in-place", file, "--key-file", DEVELOPMENT_KEY}), 1);
    EXPECT_EQ(ReadFile(file), "QVLANG=en\nIDE_A=\"a\"\nIDE_X=secret\"\n") << "nothing is written";
}

TEST_F(OrvaStrings, WarnsOfTextAfterEmptyQuotes) {
    const struct {
        const char* rest;
        bool isFound;
    } cases[] = {{"\"\" secret", true},  {"\"\"secret", true},    {"\"\"\tsecret", true},
                 {"\"\"", false},        {"\"\" \t", false},      {"\"\" ; note", false},
                 {"\"\" # note", false}, {"\"\" // note", false}, {"\"x\" note", false},
                 {"\"\", note", false},  {"\"\" * note", false},  {"\"\" -- note", false}};
    for (const auto& c : cases) {
        const std::string bytes = std::string("QVLANG=en\nIDE_A=") + c.rest + "\n";
        EXPECT_EQ(Run({"protect", "-", "--key-file", DEVELOPMENT_KEY}, bytes), 0) << c.rest;
        EXPECT_EQ(m_err, c.isFound ? "-:2: warning: IDE_A: the value is empty; the text after its "
                                     "quotes stays readable\n"
                                   : "")
            << c.rest;
    }
}

TEST_F(OrvaStrings, RekeysToAnotherKeyOnly) {
    WriteKey("key", 1);
    EXPECT_EQ(ToHex(WriteKey("same", 1)), ReadFile(Path("key")).substr(0, 64));
    EXPECT_EQ(Run({"rekey", "--from", Path("key"), "--to", Path("same"), "-"}, kReadable), 2);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(m_err, "orva-strings: error: --from and --to are the same key\n");
}

TEST_F(OrvaStrings, DoesNotWriteOverTheKey) {
    const std::string file = Write("x", kReadable);
    const Bytes key = WriteKey("key", 1);
    WriteKey("other", 2);
    std::filesystem::create_symlink("key", Path("link"));
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"protect", "--key-file", Path("key"), "-o", Path("key"), file},
             {"protect", "--key-file", Path("link"), "-o", Path("key"), file},
             {"reveal", "--key-file", Path("key"), "-o", Path("./key"), file},
             {"rekey", "--from", Path("key"), "--to", Path("other"), "-o", Path("key"), file},
             {"rekey", "--from", Path("other"), "--to", Path("key"), "-o", Path("key"), file}}) {
        EXPECT_EQ(Run(arguments), 2);
        EXPECT_EQ(m_err, "orva-strings: error: " + arguments[arguments.size() - 2] +
                             ": the output would overwrite this key file\n");
        EXPECT_EQ(ReadFile(Path("key")), ToHex(key) + "\n");
    }
}

TEST_F(OrvaStrings, WarnsOfReadableLinesNearAProtectedEntry) {
    const std::string stored = Stored("x", DevelopmentKey());
    const struct {
        std::string line;
        std::string key;  // the one that the warning names; empty: no warning
    } cases[] = {
        {" IDE_X=\"x\"", "IDE_X"},
        {"\tIDE_X=x", "IDE_X"},
        {"//IDE_X=\"x\"", "IDE_X"},
        {"// IDE_X = \"x\" ; menu", "IDE_X"},
        {"# IDE_X=\"x\"", "IDE_X"},
        {"; IDE_X=\"x\"", "IDE_X"},
        {"-- IDE_X=\"x\"", "IDE_X"},
        {"/* IDE_X=\"x\" */", "IDE_X"},
        {" * IDE_X=\"x\"", "IDE_X"},
        {"<!-- IDE_X=\"x\" -->", "IDE_X"},
        {"\"IDE_X\" = \"x\";", "IDE_X\\\""},
        {"\xC2\xA0IDE_X=\"x\"", "IDE_X"},
        {"//\xEF\xBB\xBFIDE_X=\"x\"", "IDE_X"},
        {"\fIDE_X=\"x\"", "IDE_X"},
        {"//IDENTITY=x", "IDENTITY"},
        {"//IDE_\xC3\x96=x", "IDE_\xC3\x96"},
        {"ide_x=\"x\"", "ide_x"},
        {"Ide_x=\"x\"", "Ide_x"},
        {"iDE.x=\"x\"", "iDE.x"},
        {"// ide1=\"x\"", "ide1"},
        {"IDE=\"x\"", "IDE"},
        {"// IDE = x", "IDE"},
        {"ide=x", "ide"},
        {"//IDE_X=secret\"", "IDE_X"},
        {"//IDE_X=secret \"" + stored + "\"", "IDE_X"},
        {"note\r//IDE_X=\"x\"", "IDE_X"},
        {"IDE_X: \"x\"", "IDE_X"},
        {"IDE_X:\"x\"", "IDE_X"},
        {"IDE_X \"x\"", "IDE_X"},
        {"//ide_x:\t\"x\" = y", "ide_x"},
        {"//IDE_X=\"" + stored.substr(1) + "\"", "IDE_X"},
        {"//IDE_X=\"a text as long as a stored value, though nobody takes it for one.\"", "IDE_X"},
        // Stored values, empty ones, and lines that are no entries.
        {"//IDE_X=\"" + stored + "\" ; menu", ""},
        {"//IDE_X=" + stored, ""},
        {"//IDE_X=\"" + std::string(64, '0') + "\"", ""},
        {"//IDE_X=", ""},
        {"//IDE_X= \t", ""},
        {"//IDE_X=\"\"", ""},
        {"//IDE_X", ""},
        {"//IDE_X: x", ""},
        {"//IDE_X: \"" + stored + "\"", ""},
        {"// IDE_X says \"x\"", ""},
        {"IDE_X\"x\"", ""},
        // Other words, and prose.
        {"Ideal=\"x\"", ""},
        {"identity=\"x\"", ""},
        {"idea=\"x\"", ""},
        {"// IDE texts are = protected", ""},
        {"// IDE\ttexts=protected", ""},
        {"// see IDE_X=\"x\"", ""},
        {"MENU_IDE_X=\"x\"", ""},
        {"_IDE_X=\"x\"", ""},
        {"1IDE_X=\"x\"", ""},
        {"MENU=\"IDE_X=x\"", ""},
        {"ID=x", ""},
        {"=x", ""},
        {"//", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line);
        for (const auto& [before, line] : {std::pair{"QVLANG=en\n", 2}, std::pair{"", 1}}) {
            const std::string bytes = before + c.line + "\r\n" + "QVLANG=de\n";
            EXPECT_EQ(Run({"protect", "-", "--key-file", DEVELOPMENT_KEY}, bytes), 0);
            EXPECT_EQ(m_out, bytes);
            EXPECT_EQ(m_err, c.key.empty() ? ""
                                           : "-:" + std::to_string(line) + ": warning: " + c.key +
                                                 ": this looks like a protected entry but is not "
                                                 "one; its text stays readable\n");
            EXPECT_EQ(Run({"reveal", "-", "--key-file", DEVELOPMENT_KEY}, bytes), 0);
            EXPECT_EQ(m_err, "") << "reveal leaves texts readable";
        }
    }
}

TEST_F(OrvaStrings, WarnsWhateverMarkAReadableLineBeginsWith) {
    std::string bytes = "QVLANG=en\n";
    std::string warnings;
    std::size_t line = 1;
    for (int byte = 0; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        if (c == '\n' || c == '\r' || c == '_' || (byte < 128 && std::isalnum(byte) != 0)) {
            continue;  // ends a line or is part of a word
        }
        bytes += std::string{c} + " IDE_X=\"x\"\n";
        warnings += "-:" + std::to_string(++line) +
                    ": warning: IDE_X: this looks like a protected entry but is not one; its text "
                    "stays readable\n";
    }
    EXPECT_EQ(Run({"protect", "-", "--key-file", DEVELOPMENT_KEY}, bytes), 0);
    EXPECT_EQ(m_err, warnings);
}

TEST_F(OrvaStrings, WarnsOfNothingThatItEncrypts) {
    EXPECT_EQ(
        Run({"protect", "-", "--key-file", DEVELOPMENT_KEY}, "QVLANG=en\nIDE_Y=\"a\r//IDE_X=b\"\n"),
        0);
    EXPECT_EQ(m_out, "QVLANG=en\nIDE_Y=\"" + Stored("a\r//IDE_X=b", DevelopmentKey()) + "\"\n");
    EXPECT_EQ(m_err, "");

    EXPECT_EQ(Run({"protect", "-", "--key-file", DEVELOPMENT_KEY},
                  "QVLANG=en\nIDE_Y=\"a\" ;\r//IDE_X=b\n"),
              0);
    EXPECT_EQ(m_out, "QVLANG=en\nIDE_Y=\"" + Stored("a", DevelopmentKey()) + "\" ;\r//IDE_X=b\n");
    EXPECT_EQ(
        m_err,
        "-:2: warning: IDE_X: this looks like a protected entry but is not one; its text stays "
        "readable\n");
}

TEST_F(OrvaStrings, SaysErrorsAndWarningsInTheOrderOfTheLines) {
    const std::string near =
        ": this looks like a protected entry but is not one; its text stays readable\n";
    const std::string before =
        ": the value begins at the first quote; the text before it stays readable (is the opening "
        "quote missing?)\n";
    EXPECT_EQ(Run({"protect", "-", "--key-file", DEVELOPMENT_KEY},
                  "#IDE_A=1\nIDE_B=1\nQVLANG=en\nIDE_C=x\"\n#IDE_D=1\nIDE_E=x\"\n"
                  "//\rIDE_F=1\r#IDE_G=1\rIDE_H=1\n"),
              1);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(m_err, "-:1: warning: IDE_A" + near + "-:2: error: IDE_B" + kBeforeFirst +
                         "-:4: error: IDE_C" + before + "-:5: warning: IDE_D" + near +
                         "-:6: error: IDE_E" + before + "-:7: error: IDE_F" + kAfterReturn +
                         "-:7: error: IDE_H" + kAfterReturn + "-:7: warning: IDE_G" + near);
}

TEST_F(OrvaStrings, UsesTheKeyItIsGiven) {
    const Bytes key = WriteKey("key", 7);
    const std::string file = Write("x", kReadable);
    EXPECT_EQ(Run({"protect", file, "--key-file", Path("key")}), 0);
    EXPECT_EQ(m_out, ProtectedFile(key));
    const std::string stored = Write("y", m_out);
    EXPECT_EQ(Run({"reveal", stored, "--key-file", Path("key")}), 0);
    EXPECT_EQ(m_out, kReadable);

    EXPECT_EQ(Run({"reveal", stored}), 1);
    EXPECT_EQ(m_out, "");
    const std::string why =
        ": the value looks stored but does not decode: it was damaged or made with another key\n";
    EXPECT_EQ(m_err, stored + ":4: error: IDE_TITLE " + why + stored + ":5: error: IDE_BARE" + why +
                         stored + ":8: error: IDE_TITLE" + why + stored + ":9: error: IDE_TITLE" +
                         why);
}

TEST_F(OrvaStrings, TakesAKeyFromStandardInput) {
    const Bytes first = CountingBytes(32, 1);
    const Bytes second = WriteKey("second", 2);
    const std::string file = Write("x", kReadable);
    const std::string stored = Write("y", ProtectedFile(first));
    const struct {
        std::vector<std::string> arguments;
        Bytes input;
        std::string out;
        std::string err;
    } cases[] = {
        {{"protect", file, "--key-file", "-"}, first, ProtectedFile(first), NearEntriesOf(file)},
        {{"protect", file, "--key-file=-"}, first, ProtectedFile(first), NearEntriesOf(file)},
        {{"reveal", stored, "--key-file", "-"}, first, kReadable, ""},
        {{"rekey", stored, "--from", "-", "--to", Path("second")},
         first,
         ProtectedFile(second),
         ""},
        {{"rekey", Path("y"), "--from", Path("second"), "--to", "-"},
         first,
         ProtectedFile(first),
         ""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Run(c.arguments, ToHex(c.input) + "\n"), 0) << m_err;
        EXPECT_EQ(m_out, c.out) << ::testing::PrintToString(c.arguments);
        EXPECT_EQ(m_err, c.err) << ::testing::PrintToString(c.arguments);
    }
    EXPECT_EQ(Run({"key", "show", "--key-file", Path("second")}), 0);
    const std::string fingerprint = m_out;
    EXPECT_EQ(Run({"key", "show", "--key-file", "-"}, ToHex(second)), 0);
    EXPECT_EQ(m_out, fingerprint);
    EXPECT_EQ(Run({"key", "show", "--key-file", "-"}, "no key"), 2);
    EXPECT_EQ(m_err,
              "orva-strings: error: standard input: must hold 64 hexadecimal digits on one line, "
              "but has 6 bytes\n");

    std::filesystem::current_path(m_folder.Path());
    WriteKey("-", 2);
    EXPECT_EQ(Run({"key", "show", "--key-file", "./-"}, "no key"), 0) << m_err;
    EXPECT_EQ(m_out, fingerprint);
    EXPECT_EQ(Run({"reveal", "-", "--key-file", "./-"}, ProtectedFile(second)), 0) << m_err;
    EXPECT_EQ(m_out, kReadable);
    std::filesystem::current_path("/");
}

TEST_F(OrvaStrings, ReadsStandardInputForOneThingOnly) {
    const std::vector<std::string> cases[] = {
        {"protect", "-", "--key-file", "-", "-o", Path("out")},
        {"reveal", "--key-file=-", "-"},
        {"rekey", "--from", "-", "--to", DEVELOPMENT_KEY, "-"},
        {"rekey", "--from", DEVELOPMENT_KEY, "--to", "-", "-"},
        {"rekey", "--from", "-", "--to", "-", DEVELOPMENT_KEY},
        {"rekey", "--from", "-", "--to", "-", "-"},
        {"rekey", "--from", "-", "--to", "-", Path("missing")},
    };
    for (const auto& arguments : cases) {
        std::ostringstream out;
        std::ostringstream err;
        const auto read = []() -> std::string {
            ADD_FAILURE() << "it was read";
            return {};
        };
        EXPECT_EQ(RunTool(arguments, read, out, err), 2) << ::testing::PrintToString(arguments);
        EXPECT_EQ(out.str(), "");
        EXPECT_EQ(err.str(),
                  "orva-strings: error: - is standard input, which can be read only once\n")
            << ::testing::PrintToString(arguments);
    }
    EXPECT_EQ(EntriesInFolder(), 0);
    EXPECT_EQ(Run({"protect", "-o", "-", "-"}, kReadable), 0) << "the one is standard output";
}

TEST_F(OrvaStrings, RefusesToProtectWhatLooksStoredButDoesNotDecode) {
    std::string damaged = Stored("text", DevelopmentKey());
    damaged[3] = damaged[3] == '0' ? '1' : '0';
    const std::string bytes = "QVLANG=en\nIDE_GOOD=\"text\"\nIDE_BAD=\"" + damaged + "\"\n";
    const std::string file = Write("x", bytes);
    EXPECT_EQ(Run({"protect", "--in-place", file}), 1);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(m_err, kDevelopmentKeyNote + file +
                         ":3: error: IDE_BAD: the value looks stored but does not decode: it was "
                         "damaged or made with another key\n");
    EXPECT_EQ(ReadFile(file), bytes) << "nothing is written, not even the good one";

    EXPECT_EQ(Run({"protect", "--force", file}), 0);
    EXPECT_EQ(m_out, "QVLANG=en\nIDE_GOOD=\"" + Stored("text", DevelopmentKey()) +
                         "\"\nIDE_BAD=\"" + Stored(damaged, DevelopmentKey()) + "\"\n");
}

TEST_F(OrvaStrings, LooksStoredByDigitsAndLength) {
    const struct {
        std::string value;
        bool looksStored;
    } cases[] = {
        {std::string(64, '0'), true},        {std::string(96, 'a'), true},
        {std::string(1024, 'F'), true},      {std::string(32, '0'), false},
        {std::string(63, '0'), false},       {std::string(65, '0'), false},
        {std::string(80, '0'), false},       {std::string(63, '0') + "g", false},
        {std::string(63, '0') + " ", false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Run({"protect", "-"}, "QVLANG=en\nIDE_X=\"" + c.value + "\"\n"),
                  c.looksStored ? 1 : 0)
            << c.value;
    }
}

TEST_F(OrvaStrings, RefusesATextWithANulByte) {
    EXPECT_EQ(Run({"protect", "-"}, "QVLANG=en\nIDE_X=\"a\0b\"\nIDE_Y=\"good\"\n"s), 1);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(m_err, kDevelopmentKeyNote +
                         "-:2: error: IDE_X: the text contains a NUL byte, so a host would see "
                         "only what comes before it\n");
}

TEST_F(OrvaStrings, RefusesToRevealWhatWouldNotReadBackTheSame) {
    const std::string both = Stored("back\\nslash\nline", DevelopmentKey());
    EXPECT_EQ(Run({"reveal", "-"}, "QVLANG=en\nIDE_X=\"" + both + "\"\n"), 1);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(m_err,
              "-:2: error: IDE_X: the text can't be written as a quoted value that reads back the "
              "same\n");
}

TEST_F(OrvaStrings, RekeysAllOrNothing) {
    const Bytes first = WriteKey("first", 1);
    const Bytes second = WriteKey("second", 2);
    const std::vector<std::string> fromFirstToSecond = {"--from", Path("first"), "--to",
                                                        Path("second")};
    const auto rekey = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), fromFirstToSecond.begin(), fromFirstToSecond.end());
        return Run(arguments);
    };
    const std::string file = Write("x", ProtectedFile(first));
    EXPECT_EQ(rekey({"rekey", file}), 0);
    EXPECT_EQ(m_out, ProtectedFile(second));
    EXPECT_EQ(rekey({"rekey", file, "--in-place"}), 0);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(ReadFile(file), ProtectedFile(second));
    EXPECT_EQ(rekey({"rekey", file}), 0);
    EXPECT_EQ(m_out, ProtectedFile(second)) << "what has the new key already stays";

    const std::string mixed = "QVLANG=en\nIDE_A=\"" + Stored("a", first) + "\"\nIDE_B=\"" +
                              Stored("b", DevelopmentKey()) + "\"\nIDE_C=\"readable\"\n";
    const std::string bad = Write("y", mixed);
    EXPECT_EQ(rekey({"rekey", bad, "--in-place"}), 1);
    EXPECT_EQ(m_err, bad +
                         ":3: error: IDE_B: the value looks stored but does not decode: it was "
                         "damaged or made with another key\n");
    EXPECT_EQ(ReadFile(bad), mixed);
}

TEST_F(OrvaStrings, ShowsWhatTheLibraryAnswers) {
    const std::string file = Write("x", ProtectedFile(DevelopmentKey()));
    EXPECT_EQ(Run({"show", file}), 0);
    EXPECT_EQ(m_out,
              "IDE_BARE=(protected)\nIDE_TITLE =(protected)\nMENU_OPEN=\"Open\"\n"
              "QVLANG=\"en\"\nide_lower=\"stays\"\n");
    EXPECT_EQ(Run({"show", file, "--language", "EN", "--reveal", "MENU_OPEN", "IDE_BARE"}), 0);
    EXPECT_EQ(m_out, "MENU_OPEN=\"Open\"\nIDE_BARE=\"bare \\\\n text\"\n");
    EXPECT_EQ(Run({"show", file, "--language", "FR", "--reveal"}), 0);
    EXPECT_EQ(m_out, "IDE_TITLE=\"\"\nQVLANG=\"fr\"\n");
    EXPECT_EQ(m_err, "");
    EXPECT_EQ(Run({"show", "-", "--language", "x\"en\"y", "[ABCD]", "[]xx", "QVLANG"},
                  "QVLANG=x\"en\"y\nABCD=1\n[ABCD]=2\n[]xx=3\n"),
              0);
    EXPECT_EQ(m_out, "[ABCD]=\"2\"\n[]xx=\"3\"\nQVLANG=\"en\"\n");
    EXPECT_EQ(m_err, "");
    EXPECT_EQ(Run({"show", file, "QVLANG", "NOT_THERE"}), 1);
    EXPECT_EQ(m_out, "QVLANG=\"en\"\n");
    EXPECT_EQ(m_err, file + ": error: NOT_THERE: there is no such key in the section\n");
}

TEST_F(OrvaStrings, ShowsAnotherSectionOnlyOnRequest) {
    const std::string bytes = "QVLANG=en\nABCD=1\nQVLANG=fr\nABCD=2\n";
    EXPECT_EQ(Run({"show", "-", "--language", "de"}, bytes), 1);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(m_err, "-: error: there is no section de\n");
    EXPECT_EQ(Run({"show", "-", "--language", "de", "ABCD", "NONE"}, bytes), 1);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(m_err, "-: error: there is no section de\n");

    EXPECT_EQ(Run({"show", "-", "--fallback", "--language", "de"}, bytes), 0);
    EXPECT_EQ(m_out, "ABCD=\"1\"\nQVLANG=\"en\"\n");
    EXPECT_EQ(m_err, "-: note: there is no section de, so this is the first section\n");
    EXPECT_EQ(Run({"show", "-", "--fallback", "--language", "de", "NONE"}, bytes), 1);
    EXPECT_EQ(m_err,
              "-: note: there is no section de, so this is the first section\n"
              "-: error: NONE: there is no such key in the section\n");

    for (const auto& [language, text] : {std::pair{"FR", "2"}, std::pair{"", "1"}}) {
        EXPECT_EQ(Run({"show", "-", "--fallback", "--language", language, "ABCD"}, bytes), 0);
        EXPECT_EQ(m_out, "ABCD=\""s + text + "\"\n");
        EXPECT_EQ(m_err, "");
    }
    for (const auto& options : std::vector<std::vector<std::string>>{{}, {"--fallback"}}) {
        std::vector<std::string> arguments = {"show", "-", "ABCD"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        EXPECT_EQ(Run(arguments, bytes), 0);
        EXPECT_EQ(m_out, "ABCD=\"1\"\n");
        EXPECT_EQ(m_err, "");
    }
}

TEST_F(OrvaStrings, ShowsWhatHasNoAnswer) {
    EXPECT_EQ(Run({"show", "-"}, "QVLANG=en\nIDE_PLAIN=\"text\"\nMENU=\"x\"\nIDE_WRONG=" +
                                     std::string(64, '0') + "\n"),
              1);
    EXPECT_EQ(m_out, "MENU=\"x\"\nQVLANG=\"en\"\n");
    EXPECT_EQ(
        m_err,
        "-:2: error: IDE_PLAIN: the value is not protected, so the library answers null\n"
        "-:4: error: IDE_WRONG: the value does not decode: it was damaged or made with another "
        "key\n");
    EXPECT_EQ(Run({"show", "-"}, "MENU=\"x\"\n"), 1);
    EXPECT_EQ(m_err, "-: error: the file has no section\n");

    EXPECT_EQ(Run({"show", "-"}, "QVLANG=en\nABCD=1\nABCD\0X=2\n"s), 1);
    EXPECT_EQ(m_out, "ABCD=\"1\"\nQVLANG=\"en\"\n");
    EXPECT_EQ(m_err,
              "-:3: error: ABCD\\x00X: the key contains a NUL byte, so ZuGetLocalizedString can't "
              "look it up\n");
}

TEST_F(OrvaStrings, ListsSections) {
    EXPECT_EQ(Run({"sections", "-"}, kReadable), 0);
    EXPECT_EQ(m_out,
              "  LINE  ENTRIES  PROTECTED  SECTION\n"
              "     2        5          2  en\n"
              "     7        2          1  fr\n");
    EXPECT_EQ(m_err, "");
}

// Its first three bytes alone make an entry a protected one.
TEST_F(OrvaStrings, TreatsEveryKeyThatBeginsWithIdeAsProtected) {
    for (const std::string key : {"IDEA", "IDE1", "IDE ", "IDE_"}) {
        SCOPED_TRACE(key);
        const std::string header = "QVLANG=en\n";
        const std::string readable = header + key + "=\"text\"\n";
        const std::string stored = header + key + "=\"" + Stored("text", DevelopmentKey()) + "\"\n";
        EXPECT_EQ(Run({"protect", "-"}, readable), 0);
        EXPECT_EQ(m_out, stored);
        EXPECT_EQ(Run({"reveal", "-"}, stored), 0);
        EXPECT_EQ(m_out, readable);
        const Bytes one = WriteKey("one.key", 1);
        const Bytes other = WriteKey("other.key", 101);
        EXPECT_EQ(Run({"rekey", "--from", Path("one.key"), "--to", Path("other.key"), "-"},
                      header + key + "=" + Stored("text", one) + "\n"),
                  0);
        EXPECT_EQ(m_out, header + key + "=" + Stored("text", other) + "\n");

        EXPECT_EQ(Run({"show", "-"}, stored), 0);
        EXPECT_EQ(m_out, key + "=(protected)\nQVLANG=\"en\"\n");
        EXPECT_EQ(Run({"show", "-"}, readable), 1);
        EXPECT_EQ(m_err, "-:2: error: " + key +
                             ": the value is not protected, so the library answers null\n");
        EXPECT_EQ(Run({"sections", "-"}, stored), 0);
        EXPECT_EQ(m_out,
                  "  LINE  ENTRIES  PROTECTED  SECTION\n"
                  "     1        2          1  en\n");
        EXPECT_EQ(Run({"protect", "-"}, key + "=\"text\"\n" + header), 1);
        EXPECT_EQ(m_err, kDevelopmentKeyNote + "-:1: error: " + key + kBeforeFirst);
    }
}

// A file of these lines with this line ending.
std::string Joined(const std::vector<std::string>& lines, const std::string& end) {
    std::string bytes;
    for (const std::string& line : lines) {
        bytes += line + end;
    }
    return bytes;
}

// Notes and blank lines everywhere, and values for the protected entries.
std::vector<std::string> Annotated(const std::string& one, const std::string& two,
                                   const std::string& three) {
    return {"// A note before everything",
            "",
            "# another",
            "QVLANG=English",
            "",
            "// between",
            "MENU_OPEN=\"Open\"",
            "   ",
            "IDE_A=\"" + one + "\"",
            "",
            "",
            "IDE_B=" + two,
            "// at the end of a section",
            "\t",
            "QVLANG=Deutsch",
            "// a note that reads = as an entry",
            "",
            "IDE_A = \"" + three + "\" ; note",
            "",
            "// at the end",
            ""};
}

TEST_F(OrvaStrings, LeavesNotesAndBlankLinesAlone) {
    const Bytes first = WriteKey("first", 1);
    const Bytes second = WriteKey("second", 2);
    for (const std::string end : {"\n", "\r\n"}) {
        const auto stored = [&](const Bytes& key) {
            return Joined(Annotated(Stored("one", key), Stored("two", key), Stored("three", key)),
                          end);
        };
        const std::string readable = Joined(Annotated("one", "two", "three"), end);
        EXPECT_EQ(Run({"protect", "--key-file", Path("first"), "-"}, readable), 0);
        EXPECT_EQ(m_out, stored(first));
        EXPECT_EQ(m_err, "");
        EXPECT_EQ(
            Run({"rekey", "--from", Path("first"), "--to", Path("second"), "-"}, stored(first)), 0);
        EXPECT_EQ(m_out, stored(second));
        EXPECT_EQ(m_err, "");
        EXPECT_EQ(Run({"reveal", "--key-file", Path("second"), "-"}, stored(second)), 0);
        EXPECT_EQ(m_out, readable);
        EXPECT_EQ(m_err, "");

        EXPECT_EQ(Run({"sections", "-"}, readable), 0);
        EXPECT_EQ(m_out,
                  "  LINE  ENTRIES  PROTECTED  SECTION\n"
                  "     4        4          2  English\n"
                  "    15        3          1  Deutsch\n");
        EXPECT_EQ(Run({"show", "--reveal", "-"}, stored(DevelopmentKey())), 0);
        EXPECT_EQ(m_out, "IDE_A=\"one\"\nIDE_B=\"two\"\nMENU_OPEN=\"Open\"\nQVLANG=\"English\"\n");
        EXPECT_EQ(Run({"show", "--reveal", "--language", "deutsch", "-"}, stored(DevelopmentKey())),
                  0);
        EXPECT_EQ(m_out,
                  "// a note that reads =\" as an entry\"\nIDE_A =\"three\"\nQVLANG=\"Deutsch\"\n");
        EXPECT_EQ(m_err, "");
    }
}

TEST_F(OrvaStrings, CountsNotesAndBlankLinesInItsMessages) {
    const Bytes key = WriteKey("key", 1);
    const std::vector<std::string> lines = {"// note",
                                            "",
                                            "IDE_EARLY=\"x\"",
                                            "",
                                            "QVLANG=en",
                                            "",
                                            "// IDE_OLD=\"x\"",
                                            "",
                                            "IDE_A=text\"",
                                            "\t",
                                            "IDE_B=\"" + std::string(64, '0') + "\"",
                                            "// note",
                                            "",
                                            "\xEF\xBB\xBFQVLANG=de",
                                            "",
                                            "ide_c=\"x\"",
                                            "",
                                            "IDE_D=\"\" secret",
                                            "// note\rIDE_E=\"x\"",
                                            ""};
    const std::string near =
        ": this looks like a protected entry but is not one; its text stays readable\n";
    const std::string before =
        "IDE_A: the value begins at the first quote; the text before it stays readable (is the "
        "opening quote missing?)\n";
    const std::string early = "-:3: error: IDE_EARLY"s + kBeforeFirst;
    const std::string damaged =
        "-:11: error: IDE_B: the value looks stored but does not decode: it was damaged or made "
        "with another key\n";
    const std::string mark = "-:14: error: QVLANG"s + kAfterMark;
    const std::string ret = "-:19: error: IDE_E"s + kAfterReturn;
    for (const std::string end : {"\n", "\r\n"}) {
        const std::string bytes = Joined(lines, end);
        EXPECT_EQ(Run({"protect", "--key-file", Path("key"), "-"}, bytes), 1);
        EXPECT_EQ(m_err, early + "-:7: warning: IDE_OLD" + near + "-:9: error: " + before +
                             damaged + mark + "-:16: warning: ide_c" + near +
                             "-:18: warning: IDE_D: the value is empty; the text after its quotes "
                             "stays readable\n" +
                             ret);
        EXPECT_EQ(m_out, "");
        EXPECT_EQ(Run({"reveal", "--key-file", Path("key"), "-"}, bytes), 1);
        EXPECT_EQ(m_err, early + "-:9: warning: " + before + damaged + mark + ret);
        EXPECT_EQ(m_out, "");
        EXPECT_EQ(Run({"rekey", "--from", Path("key"), "--to", DEVELOPMENT_KEY, "-"}, bytes), 1);
        EXPECT_EQ(m_err, early + "-:9: error: " + before + damaged + mark + ret);
        EXPECT_EQ(m_out, "");
        EXPECT_EQ(Run({"show", "-"}, bytes), 1);
        EXPECT_EQ(m_err,
                  "-:9: error: IDE_A: the value is not protected, so the library answers null\n"
                  "-:11: error: IDE_B: the value does not decode: it was damaged or made with "
                  "another key\n"
                  "-:18: error: IDE_D: the value is not protected, so the library answers null\n");
        EXPECT_EQ(m_out,
                  "// IDE_OLD=\"x\"\n// note\\x0DIDE_E=\"x\"\nQVLANG=\"en\"\nide_c=\"x\"\n"
                  "\xEF\xBB\xBFQVLANG=\"de\"\n");
    }
}

TEST_F(OrvaStrings, ReportsAMissingSectionAlikeInEveryCommand) {
    WriteKey("key", 1);
    const std::vector<std::string> commands[] = {
        {"protect", "--key-file", DEVELOPMENT_KEY, "-"},
        {"reveal", "-"},
        {"rekey", "--from", Path("key"), "--to", DEVELOPMENT_KEY, "-"},
        {"show", "-"},
        {"show", "--language", "de", "-"},
        {"sections", "-"},
    };
    for (const auto& command : commands) {
        for (const char* bytes : {"", "MENU=\"x\"\n", "QVLANG\n"}) {
            EXPECT_EQ(Run(command, bytes), 1) << command[0];
            EXPECT_EQ(m_out, "") << command[0];
            EXPECT_EQ(m_err, "-: error: the file has no section\n") << command[0];
        }
    }
}

TEST_F(OrvaStrings, ReportsInTheOrderOfTheLines) {
    const std::string bad = std::string(64, '0');
    const std::string decode =
        ": the value looks stored but does not decode: it was damaged or made with another key\n";
    EXPECT_EQ(Run({"reveal", "-"}, "QVLANG=en\nIDE_A=" + bad + "\nMENU=\rIDE_B=1\nIDE_C=" + bad +
                                       "\n//\rIDE_D=1\rIDE_C=1\n"),
              1);
    EXPECT_EQ(m_err, "-:2: error: IDE_A" + decode + "-:3: error: IDE_B" + kAfterReturn +
                         "-:4: error: IDE_C" + decode + "-:5: error: IDE_D" + kAfterReturn +
                         "-:5: error: IDE_C" + kAfterReturn);
    EXPECT_EQ(Run({"reveal", "-"}, "IDE_A=1\n"), 1);
    EXPECT_EQ(m_err, "-: error: the file has no section\n-:1: error: IDE_A"s + kBeforeFirst);

    // Within a line, in the order of their places, however many.
    std::string bytes = "QVLANG=en\n//";
    std::string errors;
    for (int i = 0; i < 100; ++i) {
        const std::string key = "IDE_" + std::to_string(i);
        bytes += '\r' + key + "=1";
        errors += "-:2: error: " + key + kAfterReturn;
    }
    EXPECT_EQ(Run({"reveal", "-"}, bytes), 1);
    EXPECT_EQ(m_err, errors);

    // A repeated key is reported at its first line.
    const std::string shown = "QVLANG=en\nIDE_B=text\nIDE_A=text\nIDE_B=other\n";
    const std::string plain = ": the value is not protected, so the library answers null\n";
    EXPECT_EQ(Run({"show", "-"}, shown), 1);
    EXPECT_EQ(m_err, "-:2: error: IDE_B" + plain + "-:3: error: IDE_A" + plain);
    EXPECT_EQ(Run({"show", "-", "IDE_A", "NONE", "IDE_B"}, shown), 1);
    EXPECT_EQ(m_err, "-: error: NONE: there is no such key in the section\n-:2: error: IDE_B" +
                         plain + "-:3: error: IDE_A" + plain);
}

TEST_F(OrvaStrings, MakesKeysAndTellsThemApart) {
    const std::string file = Path("new.key");
    EXPECT_EQ(Run({"key", "new", file}), 0);
    EXPECT_EQ(m_out, "");
    struct stat status = {};
    ASSERT_EQ(stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
    const std::string digits = ReadFile(file);
    EXPECT_EQ(digits.size(), 65U);
    EXPECT_EQ(digits.find_first_not_of("0123456789ABCDEF"), 64U);

    EXPECT_EQ(Run({"key", "new", file}), 2);
    EXPECT_EQ(m_err, "orva-strings: error: " + file + ": File exists\n");
    EXPECT_EQ(ReadFile(file), digits) << "a key that is there stays";

    EXPECT_EQ(Run({"key", "new", "-"}), 0);
    EXPECT_EQ(m_out.size(), 65U);
    EXPECT_NE(m_out, digits);
    for (const std::size_t half : {0U, 32U}) {
        EXPECT_NE(m_out.substr(half, 32), digits.substr(half, 32));
        EXPECT_NE(digits.substr(half, 32), std::string(32, '0'));
    }

    EXPECT_EQ(Run({"key", "show"}), 0);
    const std::string builtIn = m_out;
    EXPECT_EQ(builtIn, "fingerprint: 43AB51767D620902\ndevelopment key: yes\n");
    EXPECT_EQ(Run({"key", "show", "--key-file", DEVELOPMENT_KEY}), 0);
    EXPECT_EQ(m_out, builtIn);
    EXPECT_EQ(Run({"key", "show", "--key-file", file}), 0);
    EXPECT_EQ(m_out.substr(m_out.find('\n') + 1), "development key: no\n");
    EXPECT_NE(m_out.substr(0, m_out.find('\n')), builtIn.substr(0, builtIn.find('\n')));
    EXPECT_EQ(m_out.find(digits.substr(0, 8)), std::string::npos) << "it does not show the key";
}

TEST_F(OrvaStrings, RequiresAKeyFileOf64Digits) {
    const std::string good = ToHex(CountingBytes(32));
    const struct {
        const char* what;
        std::string bytes;
        bool isGood;
    } cases[] = {
        {"as made", good + "\n", true},
        {"no line end", good, true},
        {"CR LF", good + "\r\n", true},
        {"upper case", "000102030405060708090A0B0C0D0E0F101112131415161718191A1B1C1D1E1F", true},
        {"empty", "", false},
        {"a line end alone", "\n", false},
        {"CR LF alone", "\r\n", false},
        {"two line ends", good + "\n\n", false},
        {"a carriage return alone", good + "\r", false},
        {"short", good.substr(1), false},
        {"long", good + "0", false},
        {"a letter", "g" + good.substr(1), false},
        {"a blank", " " + good.substr(1), false},
        {"an @", "@" + good.substr(1), false},
        {"a colon", ":" + good.substr(1), false},
    };
    for (const auto& c : cases) {
        const std::string file = Write("key", c.bytes);
        EXPECT_EQ(Run({"key", "show", "--key-file", file}), c.isGood ? 0 : 2) << c.what;
        EXPECT_EQ(
            m_err,
            c.isGood ? ""
                     : "orva-strings: error: " + file + ": must hold 64 hexadecimal digits" +
                           (c.bytes.size() == 64 ? ", but has other characters\n"
                                                 : " on one line, but has " +
                                                       std::to_string(c.bytes.size()) + " bytes\n"))
            << c.what;
    }
    EXPECT_EQ(Run({"protect", "-", "--key-file", Path("missing")}), 2);
    EXPECT_EQ(m_err, "orva-strings: error: " + Path("missing") + ": No such file or directory\n");
}

TEST_F(OrvaStrings, EndsWith2OnWrongUsageAndOnSystemErrors) {
    const std::vector<std::string> cases[] = {
        {},
        {"nonsense"},
        {"protect"},
        {"protect", "a", "b"},
        {"protect", "--nonsense", "-"},
        {"sections", "--key-file", "x", "-"},
        {"rekey", "-"},
        {"rekey", "-", "--from", "x"},
        {"key"},
        {"key", "new"},
        {"protect", "--in-place", "-"},
        {"protect", "--in-place", "-o", Path("out"), "-"},
        {"reveal", "-o", Path("out"), "--in-place", DEVELOPMENT_KEY},
        {"reveal", "--in-place", "-o", "-", DEVELOPMENT_KEY},
        {"protect", "-", "-o"},
        {"protect", "-", "-o", ""},
        {"protect", "-", "--output="},
        {"show", "-o", Path("out"), "-"},
        {"sections", "-o", Path("out"), "-"},
        {"key", "new", "-o", Path("out"), "-"},
        {"protect", "-", "--key-file", ""},
        {"reveal", "-", "--key-file="},
        {"reveal", "--key-file=", DEVELOPMENT_KEY, "-"},
        {"rekey", "-", "--from", "", "--to", DEVELOPMENT_KEY},
        {"rekey", "-", "--from", DEVELOPMENT_KEY, "--to", ""},
        {"key", "new", ""},
        {"protect", Path("missing")},
        {"protect", m_folder.Path()},
        {"show", Path("missing")},
        {"sections", Path("missing")},
    };
    for (const auto& arguments : cases) {
        EXPECT_EQ(Run(arguments), 2) << ::testing::PrintToString(arguments);
        EXPECT_EQ(m_out, "") << ::testing::PrintToString(arguments);
        EXPECT_NE(m_err, "") << ::testing::PrintToString(arguments);
    }
    EXPECT_EQ(EntriesInFolder(), 0);
}

TEST_F(OrvaStrings, NamesAnUnknownCommandAndTheNearest) {
    const struct {
        std::vector<std::string> arguments;
        std::string message;
    } cases[] = {
        {{"protekt", "x"}, "unknown command 'protekt'; did you mean 'protect'?"},
        {{"protekt"}, "unknown command 'protekt'; did you mean 'protect'?"},
        {{"protekt", "--in-place", "x"}, "unknown command 'protekt'; did you mean 'protect'?"},
        {{"section", "-"}, "unknown command 'section'; did you mean 'sections'?"},
        {{"SHOW", "-"}, "unknown command 'SHOW'; did you mean 'show'?"},
        {{"Show", "-"}, "unknown command 'Show'; did you mean 'show'?"},
        {{"hsow", "-"}, "unknown command 'hsow'; did you mean 'show'?"},
        {{"otect"}, "unknown command 'otect'; did you mean 'protect'?"},
        {{"revael"}, "unknown command 'revael'; did you mean 'reveal'?"},
        {{"sectixxx"}, "unknown command 'sectixxx'"},
        {{"keyz"}, "unknown command 'keyz'; did you mean 'keys' or 'key'?"},
        {{"rekei"}, "unknown command 'rekei'; did you mean 'rekey'?"},
        {{"reky"}, "unknown command 'reky'; did you mean 'rekey'?"},
        {{"ke"}, "unknown command 'ke'; did you mean 'key'?"},
        {{"xx"}, "unknown command 'xx'"},
        {{"y"}, "unknown command 'y'"},
        {{"nonsense", "protect", "-"}, "unknown command 'nonsense'"},
        {{""}, "unknown command ''"},
        {{"[show]", "-"}, "unknown command '[show]'; did you mean 'show'?"},
        {{"a\nb"}, "unknown command 'a\\nb'"},
        {{"key", "nwe", "x"}, "unknown command 'key nwe'; did you mean 'key new'?"},
        {{"key", "shw"}, "unknown command 'key shw'; did you mean 'key show'?"},
        {{"key", "protect"}, "unknown command 'key protect'"},
        {{"protekt", "key", "nwe"}, "unknown command 'protekt'; did you mean 'protect'?"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Run(c.arguments), 2) << ::testing::PrintToString(c.arguments);
        EXPECT_EQ(m_out, "") << ::testing::PrintToString(c.arguments);
        EXPECT_EQ(m_err, "orva-strings: error: " + c.message + " (see --help)\n");
    }
    // Nor is an option, or a command's own argument, mistaken for a command.
    for (const auto& arguments : std::vector<std::vector<std::string>>{
             {}, {"--nonsense"}, {"key"}, {"key", "--nonsense"}, {"protect", "a", "b"}}) {
        EXPECT_EQ(Run(arguments), 2);
        EXPECT_EQ(m_err.find("unknown command"), std::string::npos) << m_err;
    }
}

TEST_F(OrvaStrings, NamesWhatIsWrongWithTheCommandLine) {
    const std::string file = Write("x", kReadable);
    const struct {
        std::vector<std::string> arguments;
        std::string message;
    } cases[] = {
        {{}, "a command is required"},
        {{"key"}, "a command is required after key"},
        {{"--versoin"}, "unknown option '--versoin'"},
        {{"-V", "protect", file}, "unknown option '-V'"},
        {{"key", "--nonsense"}, "unknown option '--nonsense'"},
        {{"protect", "-k"}, "unknown option '-k'"},
        {{"protect", "--inplace", file}, "unknown option '--inplace'"},
        {{"show", "--lang=x", file}, "unknown option '--lang'"},
        {{"protect", "--language", "x", file}, "unknown option '--language'"},
        {{"key", "show", "--libary", file}, "unknown option '--libary'"},
        {{"protect", "--a\nb=[]", file}, "unknown option '--a\\nb'"},
        {{"protect", "-k[]", file}, "unknown option '-k[]'"},
        {{"protect"}, "FILE is required"},
        {{"rekey", "--to", "key", file}, "--from is required"},
        {{"rekey", "--from", "key", file}, "--to is required"},
        {{"key", "new"}, "KEYFILE is required"},
        {{"protect", ""}, "FILE: the name is empty"},
        {{"show", "--reveal", "--language=a", "--language=b", file},
         "--language: At Most 1 required but received 2"},
        {{"reveal", file, "-"}, "The following argument was not expected: -"},
        {{"reveal", file, "--", "--more"}, "The following argument was not expected: --more"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Run(c.arguments), 2) << ::testing::PrintToString(c.arguments);
        EXPECT_EQ(m_out, "") << ::testing::PrintToString(c.arguments);
        EXPECT_EQ(m_err, "orva-strings: error: " + c.message + " (see --help)\n");
    }
}

TEST_F(OrvaStrings, RefusesAValueForAnOptionWithoutOne) {
    const std::string file = Write("x", kReadable);
    for (const std::string value : {"yes", "no", "false", "0", "Other.strings"}) {
        EXPECT_EQ(Run({"protect", "--in-place=" + value, file}), 2) << value;
        EXPECT_EQ(m_err, "orva-strings: error: --in-place takes no value (see --help)\n");
        EXPECT_EQ(Run({"protect", "--force=" + value, file}), 2) << value;
        EXPECT_EQ(Run({"show", "--reveal=" + value, file}), 2) << value;
        EXPECT_EQ(Run({"show", "--fallback=" + value, file}), 2) << value;
        EXPECT_EQ(Run({"show", "--all-languages=" + value, file}), 2) << value;
        EXPECT_EQ(Run({"reveal", "--lenient=" + value, file}), 2) << value;
        EXPECT_EQ(m_out, "") << value;
    }
    EXPECT_EQ(ReadFile(file), kReadable);
}

TEST_F(OrvaStrings, ShowsHelpAndItsVersion) {
    const std::string rekey =
        "  orva-strings rekey --from old.key --to new.key --in-place Sample.strings\n";
    EXPECT_EQ(Run({"--help"}), 0);
    EXPECT_NE(m_out.find("\nExamples:\n  orva-strings protect -o Shipped.strings Source.strings\n"),
              std::string::npos)
        << m_out;
    EXPECT_NE(m_out.find(rekey), std::string::npos) << m_out;
    EXPECT_NE(m_out.find("Exit status: 0 done, 1 "), std::string::npos) << m_out;
    EXPECT_EQ(m_err, "");
    EXPECT_EQ(Run({"rekey", "--help"}), 0);
    EXPECT_NE(m_out.find("\nExamples:\n" + rekey), std::string::npos) << m_out;
    EXPECT_EQ(Run({"protect", "--help"}), 0);
    EXPECT_NE(m_out.find("--key-file"), std::string::npos);
    for (const auto& arguments : std::vector<std::vector<std::string>>{{}, {"key"}}) {
        std::vector<std::string> help = arguments;
        help.emplace_back("--help");
        EXPECT_EQ(Run(help), 0);
        EXPECT_NE(m_out.find(" [OPTIONS] COMMAND\n"), std::string::npos) << m_out;
        EXPECT_NE(m_out.find("\nCommands:\n"), std::string::npos) << m_out;
        EXPECT_EQ(m_out.find("ubcommand"), std::string::npos) << m_out;
    }
    EXPECT_EQ(Run({"--version"}), 0);
    EXPECT_EQ(m_out, ORVA_VERSION "\n");
}

TEST_F(OrvaStrings, KeepsModeAndLinkInPlace) {
    const std::string file = Write("x", kReadable);
    std::filesystem::create_symlink("x", Path("link"));
    for (const mode_t mode : std::initializer_list<mode_t>{0644, 0600, 0755, 0444, 04755}) {
        m_folder.Write("new", kReadable);
        std::filesystem::rename(Path("new"), file);
        ASSERT_EQ(chmod(file.c_str(), mode), 0);
        EXPECT_EQ(Run({"protect", "--in-place", Path("link")}), 0);
        EXPECT_EQ(m_out, "");
        EXPECT_EQ(ReadFile(file), ProtectedFile(DevelopmentKey()));
        struct stat status = {};
        ASSERT_EQ(stat(file.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777U, mode);
    }
    EXPECT_TRUE(std::filesystem::is_symlink(Path("link")));
    EXPECT_EQ(EntriesInFolder(), 2) << "nothing else is left in the folder";
}

TEST_F(OrvaStrings, ReplacesNothingButARegularFile) {
    const PipeWriter writer(Path("pipe"), [&] { std::ofstream(Path("pipe")) << kReadable; });
    EXPECT_EQ(Run({"protect", "--in-place", Path("pipe")}), 2);
    EXPECT_EQ(m_err, kDevelopmentKeyNote + NearEntriesOf(Path("pipe")) + "orva-strings: error: " +
                         Path("pipe") + ": only a regular file can be replaced\n");
    EXPECT_TRUE(std::filesystem::is_fifo(Path("pipe")));
}

TEST_F(OrvaStrings, ReplacesNothingThatChangedMeanwhile) {
    const std::string file = Path("x");
    const auto replaceByOther = [&] {
        Write("other", "early");
        chmod(Path("other").c_str(), 0640);
        std::filesystem::rename(Path("other"), file);
    };
    struct Case {
        const char* what;
        std::function<void()> change;
        std::string bytes;  // what the file holds after the change
    };
    std::vector<Case> cases = {
        {"bytes", [&] { Write("x", "later"); }, "later"},
        {"bytes at the end", [&] { Write("x", "early, and more"); }, "early, and more"},
        {"fewer bytes", [&] { Write("x", "earl"); }, "earl"},
        {"no bytes", [&] { Write("x", ""); }, ""},
        {"mode", [&] { chmod(file.c_str(), 0600); }, "early"},
        {"another file of the same bytes and mode", replaceByOther, "early"},
        {"no file", [&] { std::filesystem::remove(file); }, "none"},
        {"a folder",
         [&] {
             std::filesystem::remove(file);
             std::filesystem::create_directory(file);
         },
         "none"},
        {"a pipe",
         [&] {
             std::filesystem::remove(file);
             mkfifo(file.c_str(), 0640);
         },
         "none"},
    };
    if (geteuid() == 0) {  // only root can give files away
        cases.push_back({"owner", [&] { EXPECT_EQ(chown(file.c_str(), 12345, -1U), 0); }, "early"});
        cases.push_back({"group", [&] { EXPECT_EQ(chown(file.c_str(), -1U, 12345), 0); }, "early"});
    }
    for (const Case& c : cases) {
        Write("x", "early");
        ASSERT_EQ(chmod(file.c_str(), 0640), 0);
        const FileSnapshot before = ReadSnapshot(file);
        c.change();
        struct stat changed = {};
        const int exists = lstat(file.c_str(), &changed);
        const auto entries = EntriesInFolder();
        EXPECT_ANY_THROW(ReplaceFile(file, before, "new")) << c.what;
        EXPECT_EQ(EntriesInFolder(), entries) << "nothing is left beside it: " << c.what;
        struct stat after = {};
        EXPECT_EQ(lstat(file.c_str(), &after), exists);
        EXPECT_EQ(after.st_ino, changed.st_ino) << c.what;
        EXPECT_EQ(after.st_mode, changed.st_mode) << c.what;
        EXPECT_EQ(after.st_uid, changed.st_uid) << c.what;
        EXPECT_EQ(after.st_gid, changed.st_gid) << c.what;
        EXPECT_EQ(std::filesystem::is_regular_file(file) ? ReadFile(file) : "none", c.bytes)
            << c.what;
        std::filesystem::remove_all(file);
    }
    Write("x", "early");
    ReplaceFile(file, ReadSnapshot(file), "new");
    EXPECT_EQ(ReadFile(file), "new");
}

TEST_F(OrvaStrings, SaysThatAnotherProgramChangedTheFile) {
    const std::string file = Write("x", "early");
    const FileSnapshot before = ReadSnapshot(file);
    Write("x", "later");
    try {
        ReplaceFile(file, before, "new");
        ADD_FAILURE() << "it was replaced";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(error.what(), file + ": another program has changed it in the meantime");
    }
}

// If the result is as long as what it replaces, only the bytes differ.
TEST_F(OrvaStrings, WritesAResultOfTheSameLength) {
    const Bytes first = WriteKey("first", 1);
    const Bytes second = WriteKey("second", 2);
    const std::string before = ProtectedFile(first);
    const std::string after = ProtectedFile(second);
    ASSERT_EQ(before.size(), after.size());
    std::vector<std::string> arguments = {"rekey", "--from",       Path("first"),
                                          "--to",  Path("second"), Write("x", before)};
    arguments.insert(arguments.end(), {"-o", Write("out", before)});
    EXPECT_EQ(Run(arguments), 0) << m_err;
    EXPECT_EQ(ReadFile(Path("out")), after);
    EXPECT_EQ(ReadFile(Path("x")), before);
    arguments.back() = Path("x");
    EXPECT_EQ(Run(arguments), 0) << m_err;
    EXPECT_EQ(ReadFile(Path("x")), after) << "as its own output";
    Write("x", before);
    arguments.resize(arguments.size() - 2);
    arguments.emplace_back("--in-place");
    EXPECT_EQ(Run(arguments), 0) << m_err;
    EXPECT_EQ(ReadFile(Path("x")), after);
}

TEST_F(OrvaStrings, ReplacesNothingThatChangedToBytesOfTheSameLength) {
    const Bytes key = CountingBytes(32, 1);
    std::string large = kReadable + "\nMENU=\""s + std::string(200'000, 'x') + '"';
    for (const std::string& before : {std::string(kReadable), large}) {
        for (const std::size_t place : {std::size_t{0}, before.size() / 2, before.size() - 1}) {
            std::string changed = before;
            ++changed[place];
            const std::string file = Write("x", before);
            const auto time = std::filesystem::last_write_time(file);
            std::ostringstream out;
            std::ostringstream err;
            // The key is read after the file, so this is when the other program acts.
            const auto readKey = [&] {
                std::fstream(file, std::ios::in | std::ios::out | std::ios::binary) << changed;
                std::filesystem::last_write_time(file, time);
                return ToHex(key);
            };
            EXPECT_EQ(
                RunTool({"protect", "--in-place", "--key-file", "-", file}, readKey, out, err), 2)
                << place;
            EXPECT_EQ(out.str(), "");
            EXPECT_EQ(err.str(), NearEntriesOf(file) + "orva-strings: error: " + file +
                                     ": another program has changed it in the meantime\n");
            EXPECT_EQ(ReadFile(file) == changed, true) << place;
            EXPECT_EQ(EntriesInFolder(), 1) << "nothing is left beside it";
        }
    }
}

TEST_F(OrvaStrings, TakesNothingOutOfAPipeThatCameMeanwhile) {
    const std::string file = Write("x", "early");
    const FileSnapshot before = ReadSnapshot(file);
    std::filesystem::remove(file);
    ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
    const int pipe = open(file.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    ASSERT_EQ(write(pipe, "early", 5), 5);
    EXPECT_THROW(ReplaceFile(file, before, "new"), std::runtime_error);
    char bytes[16] = {};
    EXPECT_EQ(read(pipe, bytes, sizeof bytes), 5);
    EXPECT_STREQ(bytes, "early");
    close(pipe);
}

// The mode of a file, including its special bits.
mode_t ModeOf(const std::string& file) {
    struct stat status = {};
    EXPECT_EQ(stat(file.c_str(), &status), 0) << file;
    return status.st_mode & 07777U;
}

TEST_F(OrvaStrings, WritesTheResultToAFile) {
    const std::string file = Write("x", kReadable);
    const Bytes first = WriteKey("first", 1);
    const Bytes second = WriteKey("second", 2);
    const struct {
        std::vector<std::string> arguments;
        std::string bytes;
        std::string err;
    } cases[] = {
        {{"protect", file, "-o", Path("out"), "--key-file", Path("first")},
         ProtectedFile(first),
         NearEntriesOf(file) + Path("out") + ": protected 4 entries\n"},
        {{"rekey", "--from", Path("first"), "--to", Path("second"), Path("out"), "--output",
          Path("out")},
         ProtectedFile(second),
         Path("out") + ": rekeyed 4 entries\n"},
        {{"reveal", "--key-file", Path("second"), "--output=" + Path("out"), Path("out")},
         kReadable,
         Path("out") + ": revealed 4 entries\n"},
        {{"protect", "-o" + Path("out"), "-", "--key-file", Path("first")},
         ProtectedFile(first),
         NearEntriesOf("-") + Path("out") + ": protected 4 entries\n"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Run(c.arguments, kReadable), 0) << m_err;
        EXPECT_EQ(m_out, "") << c.arguments[0];
        EXPECT_EQ(m_err, c.err) << c.arguments[0];
        EXPECT_EQ(ReadFile(Path("out")), c.bytes) << c.arguments[0];
    }
    EXPECT_EQ(ReadFile(file), kReadable);
    EXPECT_EQ(EntriesInFolder(), 4) << "nothing is left beside it";
}

TEST_F(OrvaStrings, TakesAHyphenForStandardOutput) {
    std::filesystem::current_path(m_folder.Path());
    EXPECT_EQ(Run({"protect", "-", "-o", "-"}, kReadable), 0);
    EXPECT_EQ(m_out, ProtectedFile(DevelopmentKey()));
    EXPECT_EQ(EntriesInFolder(), 0);
    EXPECT_EQ(Run({"protect", "-", "-o", "./-"}, kReadable), 0);
    EXPECT_EQ(m_out, "");
    std::filesystem::current_path("/");
    EXPECT_EQ(ReadFile(Path("-")), ProtectedFile(DevelopmentKey()));
}

TEST_F(OrvaStrings, WritesToTheFileOfExactlyTheName) {
    std::filesystem::current_path(m_folder.Path());
    for (const std::string name : {"[file]", "[]", "++", "=file", "file\n", "[file]\n", "\n"}) {
        for (const auto& option : std::vector<std::vector<std::string>>{
                 {"-o", name}, {"-o" + name}, {"--output", name}, {"--output=" + name}}) {
            std::vector<std::string> arguments = {"protect", "-"};
            arguments.insert(arguments.end(), option.begin(), option.end());
            EXPECT_EQ(Run(arguments, kReadable), 0) << m_err;
            EXPECT_EQ(EntriesInFolder(), 1) << ::testing::PrintToString(arguments);
            EXPECT_TRUE(std::filesystem::remove(Path(name))) << ::testing::PrintToString(arguments);
        }
    }
    std::filesystem::current_path("/");
}

TEST_F(OrvaStrings, WritesNoFileWithoutAResult) {
    const std::string good = Write("good", kReadable);
    const std::string bad = Write("bad", "QVLANG=en\nIDE_X=" + std::string(64, '0') + "\n");
    for (const bool exists : {false, true}) {
        if (exists) {
            Write("out", "old");
        }
        const auto entries = EntriesInFolder();
        EXPECT_EQ(Run({"protect", bad, "-o", Path("out")}), 1);
        EXPECT_EQ(Run({"reveal", bad, "-o", Path("out")}), 1);
        EXPECT_EQ(Run({"protect", good, "-o", Path("out"), "--key-file", good}), 2);
        EXPECT_EQ(Run({"protect", Path("missing"), "-o", Path("out")}), 2);
        EXPECT_EQ(Run({"rekey", good, "-o", Path("out"), "--from", Path("missing"), "--to",
                       DEVELOPMENT_KEY}),
                  2);
        EXPECT_EQ(EntriesInFolder(), entries);
    }
    EXPECT_EQ(ReadFile(Path("out")), "old");
}

TEST_F(OrvaStrings, GivesAnOutputFileTheModeOfAnyNewFile) {
    for (const mode_t mask : std::initializer_list<mode_t>{0, 022, 027, 077, 0277}) {
        const mode_t before = umask(mask);
        EXPECT_EQ(Run({"protect", "-", "-o", Path("out")}, kReadable), 0) << m_err;
        umask(before);
        EXPECT_EQ(ModeOf(Path("out")), 0666 & ~mask);
        EXPECT_EQ(ReadFile(Path("out")), ProtectedFile(DevelopmentKey()));
        std::filesystem::remove(Path("out"));
    }
}

TEST_F(OrvaStrings, KeepsModeAndLinkOfAnOutputFile) {
    for (const mode_t mode : std::initializer_list<mode_t>{0644, 0600, 0444, 04755}) {
        Write("out", "old");
        std::filesystem::create_hard_link(Path("out"), Path("hard"));
        std::filesystem::create_symlink("out", Path("link"));
        ASSERT_EQ(chmod(Path("out").c_str(), mode), 0);
        EXPECT_EQ(Run({"protect", "-", "-o", Path("link")}, kReadable), 0) << m_err;
        EXPECT_EQ(ReadFile(Path("out")), ProtectedFile(DevelopmentKey()));
        EXPECT_EQ(ModeOf(Path("out")), mode);
        EXPECT_TRUE(std::filesystem::is_symlink(Path("link")));
        EXPECT_EQ(ReadFile(Path("hard")), "old");
        EXPECT_EQ(EntriesInFolder(), 3);
        for (const char* name : {"out", "hard", "link"}) {
            std::filesystem::remove(Path(name));
        }
    }
}

TEST_F(OrvaStrings, WritesWhereALinkToNothingLeads) {
    std::filesystem::create_directory(Path("folder"));
    std::filesystem::create_symlink("folder/second", Path("first"));
    std::filesystem::create_symlink("../out", Path("folder/second"));
    EXPECT_EQ(Run({"protect", "-", "-o", Path("first")}, kReadable), 0) << m_err;
    EXPECT_TRUE(std::filesystem::is_symlink(Path("first")));
    EXPECT_TRUE(std::filesystem::is_symlink(Path("folder/second")));
    EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::symlink_status(Path("out"))));
    EXPECT_EQ(ReadFile(Path("out")), ProtectedFile(DevelopmentKey()));

    std::filesystem::create_symlink(Path("absolute"), Path("folder/third"));
    EXPECT_EQ(Run({"protect", "-", "-o", Path("folder/third")}, kReadable), 0) << m_err;
    EXPECT_EQ(ReadFile(Path("absolute")), ProtectedFile(DevelopmentKey()));

    std::filesystem::create_symlink("loop", Path("loop"));
    EXPECT_EQ(Run({"protect", "-", "-o", Path("loop")}, kReadable), 2);
    EXPECT_EQ(m_err, kDevelopmentKeyNote + NearEntriesOf("-") + "orva-strings: error: " +
                         Path("loop") + ": Too many levels of symbolic links\n");
}

// Otherwise Make, which looks at a file's time, would run the command over and over.
TEST_F(OrvaStrings, WritesAnOutputFileAnewWhereNothingChanges) {
    const std::string file = Write("out", ProtectedFile(DevelopmentKey()));
    const auto longAgo = std::filesystem::last_write_time(file) - std::chrono::hours(1);
    std::filesystem::last_write_time(file, longAgo);
    EXPECT_EQ(Run({"protect", "-", "-o", file}, kReadable), 0);
    EXPECT_EQ(ReadFile(file), ProtectedFile(DevelopmentKey()));
    EXPECT_GT(std::filesystem::last_write_time(file), longAgo);
    EXPECT_EQ(Run({"protect", file, "-o", Path("copy")}), 0) << "nor where the result is the input";
    EXPECT_EQ(ReadFile(Path("copy")), ReadFile(file));
}

TEST_F(OrvaStrings, WritesToNothingButARegularFile) {
    ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
    const struct {
        std::string name;
        std::string why;
    } cases[] = {
        {m_folder.Path(), "only a regular file can be replaced"},
        {Path("pipe"), "only a regular file can be replaced"},
        {Path("missing/out"), "No such file or directory"},
        {Path("missing/"), "No such file or directory"},
        {Path("pipe/out"), "Not a directory"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Run({"protect", "-", "-o", c.name}, kReadable), 2);
        EXPECT_EQ(m_out, "");
        EXPECT_EQ(m_err, kDevelopmentKeyNote + NearEntriesOf("-") +
                             "orva-strings: error: " + c.name + ": " + c.why + "\n");
    }
    EXPECT_EQ(EntriesInFolder(), 1);
    EXPECT_TRUE(std::filesystem::is_fifo(Path("pipe")));
}

TEST_F(OrvaStrings, ReportsInputThatCannotBeRead) {
    std::ostringstream out;
    std::ostringstream err;
    const auto refuse = []() -> std::string {
        throw std::system_error(EIO, std::generic_category(), "standard input");
    };
    EXPECT_EQ(RunTool({"sections", "-"}, refuse, out, err), 2);
    EXPECT_EQ(err.str(), "orva-strings: error: standard input: Input/output error\n");
}

TEST_F(OrvaStrings, TakesEveryArgumentAsItIs) {
    const std::string file = Write("[x]", "QVLANG=[en,fr]\n[A,B]=1\n");
    std::filesystem::current_path(m_folder.Path());
    EXPECT_EQ(Run({"show", "[x]", "--language", "[en,fr]", "[A,B]"}), 0);
    EXPECT_EQ(m_out, "[A,B]=\"1\"\n");
    EXPECT_EQ(m_err, "");
    const struct {
        std::string argument;  // as a language and as a key
        std::string messages;
    } cases[] = {
        {"++",
         "-: note: there is no section ++, so this is the first section\n"
         "-: error: ++: there is no such key in the section\n"},
        {"", "-: error: : there is no such key in the section\n"},
        {"[]",
         "-: note: there is no section [], so this is the first section\n"
         "-: error: []: there is no such key in the section\n"},
        {"[a]\n",
         "-: note: there is no section [a]\\n, so this is the first section\n"
         "-: error: [a]\\n: there is no such key in the section\n"},
        {"\n",
         "-: note: there is no section \\n, so this is the first section\n"
         "-: error: \\n: there is no such key in the section\n"},
    };
    for (const auto& c : cases) {
        for (const auto& arguments : std::vector<std::vector<std::string>>{
                 {"show", "--fallback", "--language", c.argument, "-", c.argument},
                 {"show", "--fallback", "--language=" + c.argument, "-", c.argument},
                 {"show", "--fallback", "--language=" + c.argument, "--", "-", c.argument}}) {
            EXPECT_EQ(Run(arguments, "QVLANG=x\n"), 1) << ::testing::PrintToString(arguments);
            EXPECT_EQ(m_err, c.messages);
        }
    }
    EXPECT_EQ(Run({"show", "--", "-", "--key=[x]"}, "QVLANG=x\n--key\n"), 1);
    EXPECT_EQ(m_err, "-: error: --key=[x]: there is no such key in the section\n");
    EXPECT_EQ(Run({"protect", "-", "[x]"}), 2);
    EXPECT_EQ(m_err.find("\\n"), std::string::npos) << m_err;
    std::filesystem::current_path("/");
}

TEST_F(OrvaStrings, ChangesTheFileOfExactlyTheName) {
    for (const std::string name : {"file", "[file]"}) {
        const std::string without = Write(name, kReadable);
        const std::string with = Write(name + '\n', kReadable);
        std::filesystem::current_path(m_folder.Path());
        EXPECT_EQ(Run({"protect", "--in-place", name + '\n'}), 0) << m_err;
        std::filesystem::current_path("/");
        EXPECT_EQ(ReadFile(without), kReadable);
        EXPECT_NE(ReadFile(with), kReadable);
    }
}

TEST_F(OrvaStrings, SendsNoControlCharactersToTheTerminal) {
    const std::string hostile =
        "QVLANG=\x1B[31m\nKEY\x1B]0;t\x07=\"a\x7F\xC2\x9B\xC2\xA0\tb\rc\"\n";
    EXPECT_EQ(Run({"show", "-"}, hostile), 0);
    EXPECT_EQ(m_out,
              "KEY\\x1B]0;t\\x07=\"a\\x7F\\xC2\\x9B\xC2\xA0\\tb\\x0Dc\"\n"
              "QVLANG=\"\\x1B[31m\"\n");
    EXPECT_EQ(Run({"sections", "-"}, hostile), 0);
    EXPECT_NE(m_out.find("  \\x1B[31m\n"), std::string::npos) << m_out;
    EXPECT_EQ(Run({"protect", "-"}, "IDE_\x1B[2J=1\n"), 1);
    EXPECT_EQ(m_err.find('\x1B'), std::string::npos);
    EXPECT_NE(m_err.find("IDE_\\x1B[2J"), std::string::npos) << m_err;
    const struct {
        std::string name;
        std::string printed;
    } cases[] = {
        {"\xC2\x80\xC2\x9F", "\\xC2\\x80\\xC2\\x9F"},  // the first and last in UTF-8
        {"\xC1\x80\xC2\xA0\xC3\x80", "\xC1\x80\xC2\xA0\xC3\x80"},
        {"\x80\xC2", "\x80\xC2"},  // not UTF-8
        {"\x1F \x7F~", "\\x1F \\x7F~"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Run({"show", "-"}, "QVLANG=" + c.name + "\n"), 0);
        EXPECT_EQ(m_out, "QVLANG=\"" + c.printed + "\"\n");
        EXPECT_EQ(Printable(c.name), c.printed);
    }
    EXPECT_EQ(Run({"show", Path("\x1B[2J")}), 2);
    EXPECT_EQ(m_err.find('\x1B'), std::string::npos);
}

// One control character of each kind, and how a message shows them.
const char kControls[] = "\x1B[2J\x07\r\n\x7F\xC2\x9B";
const char kControlsShown[] = "\\x1B[2J\\x07\\x0D\\n\\x7F\\xC2\\x9B";

TEST_F(OrvaStrings, SendsNoControlCharactersOfItsArguments) {
    const std::string c = kControls;
    const std::string shown = kControlsShown;
    const std::string missing = Path("missing" + c);
    const std::string missingShown = Path("missing" + shown);
    const std::string noFile = missingShown + ": No such file or directory\n";
    const std::string file = Write("x" + c, "QVLANG=en\nIDE_X=" + std::string(64, '0') + "\n");
    const std::string fileShown = Path("x" + shown);
    const std::string key = Write("key" + c, ToHex(CountingBytes(32)));
    const std::string badKey = ": must hold 64 hexadecimal digits on one line, but has 81 bytes\n";
    ASSERT_EQ(mkfifo(Path("pipe" + c).c_str(), 0600), 0);
    const std::string error = "orva-strings: error: ";
    const std::string help = " (see --help)\n";
    const std::string good = Write("good", "QVLANG=en\n");
    const struct {
        std::vector<std::string> arguments;
        int status;
        std::string err;
    } cases[] = {
        // File names.
        {{"sections", missing}, 2, error + noFile},
        {{"protect", "--key-file", key, missing}, 2, error + noFile},
        {{"show", missing}, 2, error + noFile},
        {{"reveal", file},
         1,
         fileShown +
             ":2: error: IDE_X: the value looks stored but does not decode: it was damaged or made "
             "with another key\n"},
        {{"show", file},
         1,
         fileShown +
             ":2: error: IDE_X: the value does not decode: it was damaged or made with another "
             "key\n"},
        {{"protect", "--key-file", missing, good}, 2, error + noFile},
        {{"protect", "--key-file", file, good}, 2, error + fileShown + badKey},
        {{"rekey", "--from", missing, "--to", key, good}, 2, error + noFile},
        {{"rekey", "--from", key, "--to", missing, good}, 2, error + noFile},
        {{"key", "show", "--key-file", missing}, 2, error + noFile},
        {{"key", "show", "--library", missing}, 2, error + noFile},
        {{"key", "show", "--library", file},
         1,
         fileShown + ": error: the file holds no key fingerprint, so it is not libOrvaLanguage\n"},
        {{"key", "new", key}, 2, error + Path("key" + shown) + ": File exists\n"},
        {{"key", "new", missing + "/new"},
         2,
         error + missingShown + "/new: No such file or directory\n"},
        {{"reveal", "-o", missing + "/out", good},
         2,
         error + missingShown + "/out: No such file or directory\n"},
        {{"reveal", "-o", Path("pipe" + c), good},
         2,
         error + Path("pipe" + shown) + ": only a regular file can be replaced\n"},
        {{"reveal", "--key-file", key, "-o", key, good},
         2,
         error + Path("key" + shown) + ": the output would overwrite this key file\n"},
        // Other arguments.
        {{"show", "--language", c, good}, 1, good + ": error: there is no section " + shown + "\n"},
        {{"show", "--fallback", "--language", c, good},
         0,
         good + ": note: there is no section " + shown + ", so this is the first section\n"},
        {{"show", good, "KEY" + c},
         1,
         good + ": error: KEY" + shown + ": there is no such key in the section\n"},
        {{c}, 2, error + "unknown command '" + shown + "'" + help},
        {{"protekt" + c.substr(5, 1)},
         2,
         error + "unknown command 'protekt\\x0D'; did you mean 'protect'?" + help},
        {{"key", c}, 2, error + "unknown command 'key " + shown + "'" + help},
        {{"--" + c}, 2, error + "unknown option '--" + shown + "'" + help},
        {{"sections", "--" + c + "=x", good}, 2, error + "unknown option '--" + shown + "'" + help},
        {{"sections", "--x=" + c, good}, 2, error + "unknown option '--x'" + help},
        {{"sections", "-x" + c, good}, 2, error + "unknown option '-x" + shown + "'" + help},
        {{"protect", "--in-place=" + c, good}, 2, error + "--in-place takes no value" + help},
        {{"show", "--reveal=" + c, good}, 2, error + "--reveal takes no value" + help},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(::testing::PrintToString(each.arguments));
        EXPECT_EQ(Run(each.arguments), each.status);
        EXPECT_EQ(m_err, each.err);
    }
}

// The parser's own messages. It marks some arguments with line feeds, so none are shown.
TEST_F(OrvaStrings, SendsNoControlCharactersThatTheParserRepeats) {
    const std::string c = "\x1B[2J\x07\r\x7F\xC2\x9B";
    const std::string shown = "\\x1B[2J\\x07\\x0D\\x7F\\xC2\\x9B";
    const struct {
        std::vector<std::string> arguments;
        std::string err;
    } cases[] = {
        {{"reveal", "-", c}, "The following argument was not expected: " + shown},
        {{"reveal", "-", "--", "--" + c}, "The following argument was not expected: --" + shown},
        {{"reveal", "-", c + "\n"}, "The following argument was not expected: " + shown},
        {{"reveal", "-", c, c},
         "The following arguments were not expected: " + shown + " " + shown},
        {{"key", "show", c}, "The following argument was not expected: " + shown},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(::testing::PrintToString(each.arguments));
        EXPECT_EQ(Run(each.arguments), 2);
        EXPECT_EQ(m_out, "");
        EXPECT_EQ(m_err, "orva-strings: error: " + each.err + " (see --help)\n");
    }
}

TEST_F(OrvaStrings, SendsNoControlCharactersOfAFile) {
    const std::string c = "\x1B[2J\x07\r|\x7F\xC2\x9B";
    const std::string shown = "\\x1B[2J\\x07\\x0D|\\x7F\\xC2\\x9B";
    const std::string bad = std::string(64, '0');
    const std::string header = "QVLANG=" + c + "\n";
    EXPECT_EQ(Run({"sections", "-"}, header), 0);
    EXPECT_EQ(m_out,
              "  LINE  ENTRIES  PROTECTED  SECTION\n     1        1          0  " + shown + "\n");
    EXPECT_EQ(m_err, "");
    EXPECT_EQ(Run({"show", "--reveal", "-"}, header + "KEY_" + c + "=\"" + c + "\"\nIDE_" + c +
                                                 "=\"" + Stored(c, DevelopmentKey()) + "\"\n"),
              0);
    EXPECT_EQ(m_out, "IDE_" + shown + "=\"" + shown + "\"\nKEY_" + shown + "=\"" + shown +
                         "\"\nQVLANG=\"" + shown + "\"\n");
    EXPECT_EQ(m_err, "");

    const std::string decode =
        ": the value looks stored but does not decode: it was damaged or made with another key\n";
    const struct {
        std::string line;
        std::string err;
    } cases[] = {
        {"IDE_" + c + "=" + bad, "-:2: error: IDE_" + shown + decode},
        {"IDE_" + c + "=x\"\"",
         "-:2: error: IDE_" + shown +
             ": the value begins at the first quote; the text before it stays readable (is the "
             "opening quote missing?)\n"},
        {"IDE_" + c + "=\"\" x",
         "-:2: warning: IDE_" + shown +
             ": the value is empty; the text after its quotes stays readable\n"},
        {"IDE_" + c + "=\"a\0b\""s,
         "-:2: error: IDE_" + shown +
             ": the text contains a NUL byte, so a host would see only what comes before it\n"},
        {"//IDE_\x1B\x07\x7F\xC2\x9B=x",
         "-:2: warning: IDE_\\x1B\\x07\\x7F\\xC2\\x9B: this looks like a protected entry but is "
         "not "
         "one; its text stays readable\n"},
        {"//\rIDE_\x1B\x07\x7F\xC2\x9B=x",
         "-:2: error: IDE_\\x1B\\x07\\x7F\\xC2\\x9B"s + kAfterReturn},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.line);
        const bool isError = each.err.find("error") != std::string::npos;
        EXPECT_EQ(Run({"protect", "--key-file", DEVELOPMENT_KEY, "-"}, header + each.line + "\n"),
                  isError ? 1 : 0);
        EXPECT_EQ(m_err, each.err);
    }
    EXPECT_EQ(Run({"show", "-"}, header + "IDE_" + c + "=x\nABCD\0\x1B=x\n"s), 1);
    EXPECT_EQ(m_err, "-:2: error: IDE_" + shown +
                         ": the value is not protected, so the library answers null\n-:3: error: "
                         "ABCD\\x00\\x1B: the key contains a NUL byte, so ZuGetLocalizedString "
                         "can't look it up\n");
}

// Makes a folder at a path that begins like this one. It is so deep that the copy which show makes
// in it for the library has a path of 1024 bytes or more, but the copy's own folder has not.
std::string MakeDeepFolder(std::string path) {
    constexpr std::size_t kLength = 990;
    while (path.size() < kLength) {
        path += '/' + std::string(std::min<std::size_t>(kLength - path.size(), 200), 'd');
    }
    std::filesystem::create_directories(path);
    return path;
}

// What show says of that copy. On macOS the system refuses to make it, elsewhere the library to
// load it.
const char* const kCopyTooDeep =
    PATH_MAX > 1024 ? "the library could not load the copy made there\n" : "File name too long\n";

TEST_F(OrvaStrings, SendsNoControlCharactersOfTheSystem) {
    const std::string c = kControls;
    setenv("TMPDIR", Path(c).c_str(), 1);
    EXPECT_EQ(Run({"show", "-"}, "QVLANG=en\n"), 2);
    std::string expected = "orva-strings: error: " + Path(kControlsShown) + "/orva-";
    const std::string random = m_err.substr(std::min(m_err.size(), expected.size()), 6);
    expected += random + ": No such file or directory\n";
    EXPECT_EQ(m_err, expected);

    const std::string deep = MakeDeepFolder(Path(c) + std::string(9, '/'));
    setenv("TMPDIR", deep.c_str(), 1);
    EXPECT_EQ(Run({"show", "-"}, "QVLANG=en\n"), 2);
    EXPECT_EQ(m_err.find(Path(kControlsShown)), 21U) << m_err;
    EXPECT_EQ(m_err.substr(m_err.rfind(": ")), ": "s + kCopyTooDeep);
    unsetenv("TMPDIR");

    std::ostringstream out;
    std::ostringstream err;
    const auto refuse = [&]() -> std::string {
        throw std::system_error(EIO, std::generic_category(), c);
    };
    EXPECT_EQ(RunTool({"sections", "-"}, refuse, out, err), 2);
    EXPECT_EQ(err.str(), "orva-strings: error: "s + kControlsShown + ": Input/output error\n");
}

// Reads back what Printable wrote, as the manual page describes it.
std::string Unprinted(const std::string& printed) {
    std::string text;
    for (std::size_t i = 0; i < printed.size(); ++i) {
        if (printed[i] != '\\') {
            text += printed[i];
            continue;
        }
        switch (printed.at(++i)) {
            case 'n':
                text += '\n';
                break;
            case 't':
                text += '\t';
                break;
            case 'x':
                text += static_cast<char>(std::stoi(printed.substr(i + 1, 2), nullptr, 16));
                i += 2;
                break;
            default:
                text += printed[i];
        }
    }
    return text;
}

TEST(Printable, EscapesOneWay) {
    const struct {
        std::string text;
        const char* printed;
    } cases[] = {
        {"", ""},
        {"plain 'text', Öffnen …", "plain 'text', Öffnen …"},
        {"\n", "\\n"},
        {"\\n", "\\\\n"},
        {"\t", "\\t"},
        {"\\x1B", "\\\\x1B"},
        {"\x1B", "\\x1B"},
        {"\0"s, "\\x00"},
        {"\r", "\\x0D"},
        {"say \"hi\"", "say \\\"hi\\\""},
        {"C:\\new\\", "C:\\\\new\\\\"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Printable(c.text), c.printed);
    }
}

TEST(Printable, ReadsBack) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        all += c;
        for (const std::string& text :
             {std::string{c}, std::string{'\\', c}, std::string{c, '\\'}, std::string{'\xC2', c}}) {
            const std::string printed = Printable(text);
            EXPECT_EQ(Unprinted(printed), text) << printed;
            for (const char shown : printed) {
                EXPECT_TRUE(static_cast<unsigned char>(shown) >= ' ' && shown != '\x7F') << byte;
            }
        }
    }
    EXPECT_EQ(Unprinted(Printable(all)), all);
}

TEST_F(OrvaStrings, EscapesKeysValuesAndNamesAlike) {
    const std::string file =
        Write("a\\b\n", "QVLANG=e\\n\"\nA\\\"B=\"one\\ntwo\\x\"x\"\nABCD=\\n\n");
    EXPECT_EQ(Run({"show", file, "no\\key"}), 1);
    EXPECT_EQ(m_err,
              Path("a\\\\b\\n") + ": error: no\\\\key: there is no such key in the section\n");
    EXPECT_EQ(Run({"show", file}), 0);
    EXPECT_EQ(m_out,
              "ABCD=\"\\\\n\"\n"
              "A\\\\\\\"B=\"one\\ntwo\\\\x\\\"x\"\n"
              "QVLANG=\"\"\n");
    EXPECT_EQ(Run({"sections", file}), 0);
    EXPECT_EQ(m_out,
              "  LINE  ENTRIES  PROTECTED  SECTION\n"
              "     1        3          0  e\\\\n\\\"\n");
    EXPECT_EQ(Run({"sections", Path("missing\\n")}), 2);
    EXPECT_EQ(m_err,
              "orva-strings: error: " + Path("missing\\\\n") + ": No such file or directory\n");
}

TEST_F(OrvaStrings, LeavesNothingInTheTemporaryFolder) {
    std::filesystem::create_directory(Path("tmp"));
    setenv("TMPDIR", Path("tmp").c_str(), 1);
    EXPECT_EQ(Run({"show", "-"}, kReadable), 1);
    EXPECT_NE(m_out, "");
    EXPECT_TRUE(std::filesystem::is_empty(Path("tmp")));
    unsetenv("TMPDIR");
}

TEST_F(OrvaStrings, MakesItsTemporaryFolderWhereTmpdirSays) {
    unsetenv("TMPDIR");
    EXPECT_EQ(TemporaryFolder().Path().parent_path(), "/tmp");
    setenv("TMPDIR", "", 1);
    EXPECT_EQ(TemporaryFolder().Path().parent_path(), "/tmp");
    EXPECT_EQ(Run({"show", "-"}, "QVLANG=en\n"), 0) << m_err;
    EXPECT_EQ(m_out, "QVLANG=\"en\"\n");
    setenv("TMPDIR", m_folder.Path().c_str(), 1);
    EXPECT_EQ(TemporaryFolder().Path().parent_path(), m_folder.Path());
    setenv("TMPDIR", Path("missing").c_str(), 1);
    EXPECT_EQ(Run({"show", "-"}, kReadable), 2);
    EXPECT_EQ(m_err.find("orva-strings: error: " + Path("missing/orva-")), 0U) << m_err;
    EXPECT_NE(m_err.find(": No such file or directory\n"), std::string::npos) << m_err;
    unsetenv("TMPDIR");
}

TEST_F(OrvaStrings, CopiesToAPrivateFileWithoutAName) {
    const mode_t before = umask(0477);  // this one would keep even the owner from reading the file
    const NamelessFile file(Path("x"), kReadable);
    umask(before);
    EXPECT_EQ(EntriesInFolder(), 0);
    EXPECT_EQ(ModeOf(file.Path()), 0600U);
    EXPECT_EQ(ReadFile(file.Path()), kReadable);
    Write("x", "");
    EXPECT_THROW(NamelessFile(Path("x"), kReadable), std::system_error) << "it takes nothing over";
    EXPECT_EQ(ReadFile(Path("x")), "");
}

TEST_F(OrvaStrings, SaysWhyItCannotMakeACopy) {
    const std::string deep = MakeDeepFolder(m_folder.Path());
    setenv("TMPDIR", deep.c_str(), 1);
    EXPECT_EQ(Run({"show", "-"}, kReadable), 2);
    EXPECT_NE(m_err.find(kCopyTooDeep), std::string::npos) << m_err;
    EXPECT_TRUE(std::filesystem::is_empty(deep));
    setenv("TMPDIR", "/dev/null", 1);  // where nobody can create anything
    EXPECT_EQ(Run({"show", "-"}, kReadable), 2);
    EXPECT_EQ(m_err.find("orva-strings: error: /dev/null/orva-"), 0U) << m_err;
    EXPECT_NE(m_err.find(": Not a directory\n"), std::string::npos) << m_err;
    unsetenv("TMPDIR");
}

TEST_F(OrvaStrings, MakesKeyFilesWhateverTheMaskIs) {
    const mode_t before = umask(0277);
    EXPECT_EQ(Run({"key", "new", Path("masked.key")}), 0);
    umask(before);
    struct stat status = {};
    ASSERT_EQ(stat(Path("masked.key").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
}

TEST_F(OrvaStrings, WritesNothingInPlaceWhereNothingChanges) {
    const std::string file = Write("x", ProtectedFile(DevelopmentKey()));
    struct stat before = {};
    ASSERT_EQ(stat(file.c_str(), &before), 0);
    EXPECT_EQ(Run({"protect", "--in-place", file}), 0);
    struct stat after = {};
    ASSERT_EQ(stat(file.c_str(), &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino);
}

TEST_F(OrvaStrings, ReportsAResultThatCannotBeWritten) {
    std::ofstream out(Path("out"));
    std::ostringstream err;
    {
        const FileSizeLimit limit;
        EXPECT_EQ(RunTool(
                      {"protect", "-"}, [] { return kReadable; }, out, err),
                  2);
    }
    EXPECT_EQ(err.str(), kDevelopmentKeyNote + NearEntriesOf("-") +
                             "orva-strings: error: can't write to standard output\n");
}

}  // namespace
