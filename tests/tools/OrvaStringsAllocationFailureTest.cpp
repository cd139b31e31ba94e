// Every allocation of every command of the tool fails once.
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>
#include <iterator>
#include <ostream>
#include <set>
#include <streambuf>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "api/PlaintextCache.h"
#include "strings/LocalizedStrings.h"
#include "support/TemporaryFolder.h"
#include "tests/support/FailingAllocation.h"
#include "tools/orva-strings/Tool.h"
#include "tools/orva-strings/system/Files.h"

namespace fs = std::filesystem;

int OrvaStringsMain(int argc, char** argv);  // main, renamed

namespace {

// Longer than a string object holds inline, like most texts.
const char kReadable[] =
    "QVLANG=English\n"
    "MENU_OPEN_RECENT=\"Open one of the documents that were open before\"\n"
    "IDE_REGISTRATION_TITLE=\"Register this copy of the application\\nnow\"\n"
    "QVLANG=Deutsch\n"
    "IDE_REGISTRATION_TITLE=\"Diese Kopie des Programms anmelden\"\n";

// The tool's output in the tests. Unlike standard output, it allocates nothing.
class Buffer : public std::streambuf {
public:
    Buffer() { setp(m_bytes, m_bytes + sizeof m_bytes); }
    std::string Text() const { return {pbase(), pptr()}; }

private:
    char m_bytes[65536];
};

std::size_t OpenFiles() {
    const fs::directory_iterator files("/dev/fd");
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

class OrvaStringsAllocationFailure : public ::testing::Test {
protected:
    OrvaStringsAllocationFailure() {
        Run({"key", "new", Path("key")});
        Run({"key", "new", Path("other.key")});
        m_folder.Write("readable", kReadable);
        Run({"protect", "--key-file", Path("key"), Path("readable")});
        m_folder.Write("protected", m_out);
        m_first = AllocationsOf({"--version"}) / 10 * 9;
    }

    std::string Path(const std::string& name) const { return m_folder.Path() / name; }

    std::size_t FilesInFolder() const {
        const fs::directory_iterator files(m_folder.Path());
        return static_cast<std::size_t>(std::distance(begin(files), end(files)));
    }

    // Returns the exit status. The n-th allocation fails; if n is 0, none does.
    int Run(const std::vector<std::string>& arguments, std::size_t n = 0) {
        Buffer outBuffer;
        Buffer errBuffer;
        std::ostream out(&outBuffer);
        std::ostream err(&errBuffer);
        const std::size_t live = LiveAllocations();
        const std::size_t files = OpenFiles();
        int status = 0;
        {
            std::vector<std::string> passed = arguments;
            const FailingAllocation failing(n);
            status = RunTool(
                std::move(passed), [this] { return m_input; }, out, err);
            m_hasFailed = FailingAllocation::HasFailed();
        }
        gMapLocalizedStrings.Clear();
        gMapDecodedStrings.Clear();
        m_left = LiveAllocations() - live;
        EXPECT_EQ(OpenFiles(), files);
        m_out = outBuffer.Text();
        m_err = errBuffer.Text();
        return status;
    }

    std::size_t AllocationsOf(const std::vector<std::string>& arguments) {
        std::size_t failing = 0;
        std::size_t tooMany = std::size_t{1} << 20U;
        while (tooMany - failing > 1) {
            const std::size_t n = failing + (tooMany - failing) / 2;
            Run(arguments, n);
            (m_hasFailed ? failing : tooMany) = n;
        }
        return failing;
    }

    // Fails each allocation of a command in turn, each time from the state that prepare makes. The
    // first ones are left out, which declare all commands, whichever is run.
    // check then sees the state that the run leaves, and its exit status. A failure must be
    // reported and leave nothing behind, or make no difference.
    void FailAtEach(
        const std::vector<std::string>& arguments, const std::function<void()>& prepare = [] {},
        const std::function<void(int status)>& check = [](int) {}) {
        prepare();
        ASSERT_EQ(Run(arguments), 0) << m_err;
        const std::string out = m_out;
        const std::string err = m_err;
        std::size_t points = 0;
        m_hasFailed = true;
        for (std::size_t n = m_first; m_hasFailed; ++n) {
            SCOPED_TRACE("allocation " + std::to_string(n));
            prepare();
            const int status = Run(arguments, n);
            if (status == 0) {
                EXPECT_EQ(m_out, out);
                EXPECT_EQ(m_err, err);
            } else {
                EXPECT_TRUE(m_hasFailed);
                EXPECT_EQ(status, 2) << m_err;
                EXPECT_NE(m_err.find("orva-strings: error: "), std::string::npos) << m_err;
            }
            // A lookup leaks the buffer on purpose, since it may hold plaintext.
            EXPECT_LE(m_left, arguments[0] == "show" ? 1U : 0U) << "allocations not released";
            check(status);
            points += m_hasFailed ? 1 : 0;
            if (HasFailure()) {
                return;
            }
        }
        EXPECT_GT(points, 100U);
        std::cout << "failed at each of " << points << " allocations\n";
    }

    TemporaryFolder m_folder;
    std::string m_input = kReadable;
    std::string m_out;
    std::string m_err;
    std::size_t m_left = 0;
    bool m_hasFailed = false;
    std::size_t m_first = 1;
};

TEST_F(OrvaStringsAllocationFailure, IsReportedWhereTheCommandsAreDeclared) {
    m_first = 1;
    FailAtEach({"protect", "--key-file", Path("key"), Path("readable")});
    FailAtEach({"key", "show", "--key-file", Path("key")});
}

TEST_F(OrvaStringsAllocationFailure, LeavesTheFileWholeInPlace) {
    const std::string source = ReadFile(Path("readable"));
    const std::string stored = ReadFile(Path("protected"));
    const auto fail = [&](const std::vector<std::string>& command, const std::string& before,
                          const std::string& after) {
        std::vector<std::string> arguments = command;
        arguments.insert(arguments.end(), {"--in-place", Path("file")});
        FailAtEach(
            arguments, [&] { m_folder.Write("file", before); },
            [&](int status) {
                EXPECT_EQ(ReadFile(Path("file")), status == 0 ? after : before);
                EXPECT_EQ(FilesInFolder(), 5U) << "nothing but the file";
            });
    };
    fail({"protect", "--key-file", Path("key")}, source, stored);
    fail({"reveal", "--key-file", Path("key")}, stored, source);

    ASSERT_EQ(Run({"protect", "--key-file", Path("other.key"), Path("readable")}), 0);
    const std::string other = m_out;
    fail({"rekey", "--from", Path("key"), "--to", Path("other.key")}, stored, other);
}

TEST_F(OrvaStringsAllocationFailure, LeavesAFileToMendWhole) {
    // Its sections' names are there twice.
    const std::string whole = "Notes\n" + std::string(kReadable) + kReadable;
    const std::string broken = "\xEF\xBB\xBF" + whole + "IDE_REGISTRATION_TITLE =\"one more\"\n" +
                               " qvlang=Espa\xC3\xB1ol \nMENU_OPEN_RECENT_DOCUMENTS=\"x\"\n" +
                               "MENU_OPEN_RECENT_DOCUMENTS=\"x\"\n";
    const std::string fixed = whole + "IDE_REGISTRATION_TITLE =\"one more\"\n" +
                              "QVLANG=Espa\xC3\xB1ol\nMENU_OPEN_RECENT_DOCUMENTS=\"x\"\n";
    FailAtEach(
        {"fix", Path("file")}, [&] { m_folder.Write("file", broken); },
        [&](int status) {
            EXPECT_EQ(ReadFile(Path("file")), status == 0 ? fixed : broken);
            EXPECT_EQ(FilesInFolder(), 5U) << "nothing but the file";
        });
    m_input = broken;
    FailAtEach({"fix", "-"});
}

TEST_F(OrvaStringsAllocationFailure, LeavesAFileToSyncWhole) {
    const std::string whole = "QVLANG=en\nMENU_OPEN_RECENT_DOCUMENTS=1\nMENU_QUIT=2\nMENU_OK=3\n";
    const std::string unsynced = whole +
                                 "QVLANG=de\n# a comment\nMENU_QUIT=2\nOLD_KEY=1\n"
                                 "MENU_OPEN_RECENT_DOCUMENTS=1\n";
    const std::string synced = whole +
                               "QVLANG=de\nMENU_OPEN_RECENT_DOCUMENTS=1\n# a comment\n"
                               "MENU_QUIT=2\nOLD_KEY=1\nMENU_OK=3\n";
    FailAtEach(
        {"sync", "--fill", "reference", Path("file")}, [&] { m_folder.Write("file", unsynced); },
        [&](int status) {
            EXPECT_EQ(ReadFile(Path("file")), status == 0 ? synced : unsynced);
            EXPECT_EQ(FilesInFolder(), 5U) << "nothing but the file";
        });
    m_input = unsynced;
    FailAtEach({"sync", "-"});
    FailAtEach({"stats", "--base", Path("readable"), Path("readable")});
    FailAtEach({"report", "-"});
}

TEST_F(OrvaStringsAllocationFailure, ImportsIntoTheFileOrLeavesItWhole) {
    const auto unit = [](const std::string& key, const std::string& source,
                         const std::string& target) {
        return "<trans-unit id=\"" + key + "\"><source>" + source + "</source><target>" + target +
               "</target></trans-unit>";
    };
    const std::string recent = "Open one of the documents that were open before";
    std::string attributes;  // many, so that the parser needs more memory for them
    for (int i = 0; i < 20; ++i) {
        attributes += " a" + std::to_string(i) + "=\"\"";
    }
    m_folder.Write(
        "de.xlf",
        "<xliff version=\"1.2\"><file source-language=\"en\" target-language=\"de\"><body>" +
            unit("MENU_OPEN_RECENT", recent,
                 "Eines der zuletzt ge\xC3\xB6"
                 "ffneten <ph>%1</ph>") +
            unit("IDE_REGISTRATION_TITLE", "Register this copy of the application\nnow",
                 "Jetzt diese Kopie der Anwendung anmelden") +
            unit("A_KEY_THAT_NO_SECTION_HAS", "x", "y") +
            "</body></file><file source-language=\"en\" target-language=\"nl\"" + attributes +
            "><body>" + unit("MENU_OPEN_RECENT", recent, "Een recent document openen") +
            "</body></file></xliff>");
    const std::vector<std::string> arguments = {
        "import", "--create",   "--key-file", Path("key"),     "--code",     "English=en",
        "--code", "Deutsch=de", "--code",     "Nederlands=nl", Path("file"), Path("de.xlf")};
    const std::string before = ReadFile(Path("protected"));
    m_folder.Write("file", before);
    ASSERT_EQ(Run(arguments), 0) << m_err;
    const std::string after = ReadFile(Path("file"));
    EXPECT_NE(after.find("QVLANG=Nederlands\nMENU_OPEN_RECENT=\"Een recent"), std::string::npos);
    FailAtEach(
        arguments, [&] { m_folder.Write("file", before); },
        [&](int status) {
            EXPECT_EQ(ReadFile(Path("file")), status == 0 ? after : before);
            EXPECT_EQ(FilesInFolder(), 6U) << "nothing but the file";
        });
}

TEST_F(OrvaStringsAllocationFailure, WritesNoPartOfAnOutputFile) {
    const std::vector<std::string> arguments = {"protect",        "--key-file", Path("key"),
                                                Path("readable"), "-o",         Path("out")};
    const std::string stored = ReadFile(Path("protected"));
    FailAtEach(
        arguments, [&] { fs::remove(Path("out")); },
        [&](int status) {
            EXPECT_EQ(fs::exists(Path("out")) ? ReadFile(Path("out")) : "none",
                      status == 0 ? stored : "none");
            EXPECT_EQ(FilesInFolder(), status == 0 ? 5U : 4U) << "nothing beside it";
        });
    FailAtEach(
        arguments, [&] { m_folder.Write("out", "old"); },
        [&](int status) {
            EXPECT_EQ(ReadFile(Path("out")), status == 0 ? stored : "old");
            EXPECT_EQ(FilesInFolder(), 5U) << "nothing beside it";
        });
}

TEST_F(OrvaStringsAllocationFailure, ExportsAWholeDocumentOrNone) {
    m_folder.Write("texts",
                   "QVLANG=English\n# orva: language en\n# the first entry of a menu\n"
                   "# orva: max-length 60\nMENU_OPEN_RECENT=\"Open one of those documents\"\n"
                   "# \xFF\nA_KEY_WITH_A_WRONG_COMMENT=\"A text that is not short & sweet\"\n"
                   "QVLANG=Deutsch\n# orva: language de\n"
                   "MENU_OPEN_RECENT=\"Eines der Dokumente öffnen\"\nQVLANG=deutsch\n");
    const std::vector<std::string> arguments = {"export", "--all", "-o", Path("xliff"),
                                                Path("texts")};
    std::string whole;
    FailAtEach(
        arguments, [&] { fs::remove_all(Path("xliff")); },
        [&](int status) {
            const std::string out = Path("xliff/de.xlf");
            const std::string bytes = fs::exists(out) ? ReadFile(out) : "";
            whole = whole.empty() ? bytes : whole;
            // What is found in the file is said last.
            EXPECT_TRUE(bytes == whole || (status != 0 && bytes.empty())) << bytes;
        });
    EXPECT_NE(whole.find("short &amp; sweet"), std::string::npos) << whole;
    FailAtEach({"export", "--language", "Deutsch", "--code", "English=en", "--code", "Deutsch=de",
                "--reveal", "--key-file", Path("key"), "-o", "-", Path("protected")});
}

TEST_F(OrvaStringsAllocationFailure, IsReportedWhereTheResultIsWritten) {
    FailAtEach({"protect", "--key-file", Path("key"), "-"});
    FailAtEach({"reveal", "--key-file", Path("key"), Path("protected")});
    FailAtEach({"reveal", "--lenient", "--key-file", Path("other.key"), Path("protected")});
    FailAtEach({"sections", Path("protected")});
    FailAtEach({"sections", "--format", "json", Path("protected"), Path("readable")});
    m_folder.Write("wrong",
                   "QVLANG=en\nMENU_OPEN=\"Open {menu}\" file\n"
                   "# orva: disable-next-line placeholder\nMENU_CLOSE=\"Close\"\n"
                   "QVLANG=de\nMENU_QUIT=\"Beenden\"\nIDE_TITLE=\"Title\"\n");
    for (const char* const format : {"text", "json", "sarif", "github"}) {
        FailAtEach({"check", "--format", format, "--base", Path("wrong"), Path("wrong")});
    }
    FailAtEach({"check", "--shipped", "--key-file", Path("key"), Path("protected")});
    FailAtEach({"explain", "not-utf-8"});
    FailAtEach({"keys", "--language", "c++", Path("readable")});
    m_folder.Write("source.c", "TextOr(\"QVLANG\", \"MENU_%s\", L\"A\" R\"(B)\");\n");
    FailAtEach({"usage", "--source", Path("source.c"), "--keep", "*", Path("readable")});
    const std::string program = "Host.app/Contents/MacOS/Host";
    fs::create_directories(Path("Host.app/Contents/MacOS"));
    fs::create_directories(Path("Host.app/Contents/Resources"));
    m_folder.Write(program, "");
    m_folder.Write("Host.app/Contents/Resources/a.strings", kReadable);
    fs::permissions(Path(program), fs::perms::owner_exec, fs::perm_options::add);
    FailAtEach({"where", Path(program), "a.strings", "de"});
    FailAtEach({"key", "show", "--key-file", Path("key")});
    m_folder.Write("library", std::string(100000, ' ') +
                                  "libOrvaLanguage key fingerprint: 0123456789ABCDEF" + '\0');
    FailAtEach({"key", "show", "--library", Path("library")});
    m_input = ReadFile(Path("key"));
    FailAtEach({"key", "show", "--key-file", "-"});
}

TEST_F(OrvaStringsAllocationFailure, CutsNoMessage) {
    m_folder.Write("bad", "QVLANG=en\nIDE_FIRST_KEY=" + std::string(64, '0') +
                              "\nIDE_SECOND_KEY=" + std::string(64, '0') + "\n");
    const std::string why =
        ": the value looks stored but does not decode: it was damaged or made with another key\n";
    const std::string first = Path("bad") + ":2: error: IDE_FIRST_KEY" + why;
    const std::string second = Path("bad") + ":3: error: IDE_SECOND_KEY" + why;
    const std::string noFile =
        "orva-strings: error: " + Path("missing") + ": No such file or directory\n";
    const std::string noMemory = "orva-strings: error: out of memory\n";
    const struct {
        std::vector<std::string> arguments;
        int status;
        std::string err;
        std::set<std::string> errsWithoutMemory;
    } cases[] = {
        {{"reveal", "--key-file", Path("key"), Path("bad")},
         1,
         first + second,
         {noMemory, first + noMemory}},
        {{"sections", Path("missing")}, 2, noFile, {noMemory}},
    };
    for (const auto& c : cases) {
        std::set<std::string> errsWithoutMemory;
        m_hasFailed = true;
        for (std::size_t n = 1; m_hasFailed; ++n) {
            const int status = Run(c.arguments, n);
            EXPECT_EQ(m_left, 0U);
            EXPECT_EQ(m_out, "");
            if (m_err == c.err) {
                EXPECT_EQ(status, c.status);
            } else {
                EXPECT_EQ(status, 2);
                errsWithoutMemory.insert(m_err);
            }
        }
        EXPECT_EQ(m_err, c.err);
        EXPECT_EQ(errsWithoutMemory, c.errsWithoutMemory);
    }
}

TEST_F(OrvaStringsAllocationFailure, LeavesNoPartOfAKey) {
    FailAtEach(
        {"key", "new", Path("new.key")}, [&] { fs::remove(Path("new.key")); },
        [&](int status) { EXPECT_EQ(fs::exists(Path("new.key")), status == 0); });
}

TEST_F(OrvaStringsAllocationFailure, IsReportedByShow) {
    ASSERT_EQ(Run({"protect", Path("readable")}), 0);
    m_folder.Write("shipped", m_out);
    fs::create_directory(Path("tmp"));
    setenv("TMPDIR", Path("tmp").c_str(), 1);
    const auto check = [&](int) { EXPECT_TRUE(fs::is_empty(Path("tmp"))); };
    FailAtEach(
        {"show", Path("shipped")}, [] {}, check);
    FailAtEach(
        {"show", "--language", "Deutsch", "--reveal", Path("shipped"), "IDE_REGISTRATION_TITLE"},
        [] {}, check);
    FailAtEach(
        {"show", "--all-languages", "--format", "json", "--reveal", Path("shipped")}, [] {}, check);
    FailAtEach(
        {"show", "--all-languages", "--key-file", Path("key"), Path("protected")}, [] {}, check);
    unsetenv("TMPDIR");
}

// Gives a stream another buffer during a scope.
class Redirected {
public:
    Redirected(std::ostream& stream, std::streambuf* buffer)
        : m_stream(stream), m_old(stream.rdbuf(buffer)) {}
    ~Redirected() { m_stream.rdbuf(m_old); }
    Redirected(const Redirected&) = delete;
    Redirected& operator=(const Redirected&) = delete;

private:
    std::ostream& m_stream;
    std::streambuf* m_old;
};

TEST_F(OrvaStringsAllocationFailure, IsReportedByMainItself) {
    std::string arguments[] = {"orva-strings", "sections", Path("missing")};
    char* const argv[] = {arguments[0].data(), arguments[1].data(), arguments[2].data(), nullptr};
    const std::string noMemory = "orva-strings: error: out of memory\n";
    std::size_t points = 0;
    for (bool hasFailed = true; hasFailed;) {
        Buffer err;
        int status = 0;
        {
            const Redirected redirected(std::cerr, &err);
            const FailingAllocation failing(points + 1);
            status = OrvaStringsMain(3, const_cast<char**>(argv));
            hasFailed = FailingAllocation::HasFailed();
        }
        EXPECT_EQ(status, 2);
        EXPECT_EQ(err.Text(), hasFailed ? noMemory
                                        : "orva-strings: error: " + arguments[2] +
                                              ": No such file or directory\n")
            << "allocation " << points + 1;
        points += hasFailed ? 1 : 0;
    }
    EXPECT_GT(points, 100U);
}

}  // namespace
