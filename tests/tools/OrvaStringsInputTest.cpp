// The built command with a pipe, a file or nothing as its standard input. The tests make their own
// stored texts.
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <memory>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"
#include "tests/support/CloseOnExec.h"
#include "tests/support/StoredForm.h"

extern char** environ;  // NOLINT(readability-redundant-declaration): macOS has it in no header

namespace {

void Check(bool hasSucceeded, const char* what) {
    if (!hasSucceeded) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

// A file with these values as the protected entries of its two sections, the first between notes.
std::string File(const std::string& first, const std::string& second) {
    return "// note\r\nQVLANG=English\r\nMENU_OPEN=\"Open\"\r\nIDE_TITLE=\"" + first +
           "\" ; note\r\n\r\nQVLANG=Deutsch\nIDE_TITLE=" + second + "\n";
}

const char kTitle[] = "Register this copy";
const char kTitel[] = "Diese Kopie anmelden";

std::string StoredFile(const Bytes& key) {
    return File(Stored(kTitle, key), Stored(kTitel, key));
}

enum class Source { kPipe, kFile };

class OrvaStringsInput : public ::testing::Test {
protected:
    OrvaStringsInput() {
        m_folder.Write("first.key", ToHex(m_first) + "\n");
        m_folder.Write("second.key", ToHex(m_second));
        m_folder.Write("readable", File(kTitle, kTitel));
        m_folder.Write("first", StoredFile(m_first));
    }

    // Runs the command with an open file as its standard input, or with no standard input. Returns
    // its exit status.
    int RunWith(int input, std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), ORVA_STRINGS);
        std::vector<char*> pointers;
        for (std::string& argument : arguments) {
            pointers.push_back(argument.data());
        }
        pointers.push_back(nullptr);
        const std::string out = Path("stdout");
        const std::string err = Path("stderr");
        constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC;
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        if (input >= 0) {
            posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
        } else {
            posix_spawn_file_actions_addclose(&actions, STDIN_FILENO);
        }
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), kFlags, 0600);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err.c_str(), kFlags, 0600);
        pid_t process = 0;
        errno = posix_spawn(&process, ORVA_STRINGS, &actions, nullptr, pointers.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        Check(errno == 0, ORVA_STRINGS);
        int status = 0;
        Check(waitpid(process, &status, 0) == process, "waitpid");
        m_out = BytesOf("stdout");
        m_err = BytesOf("stderr");
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    int Run(Source source, const std::string& input, const std::vector<std::string>& arguments) {
        if (source == Source::kFile) {
            m_folder.Write("stdin", input);
            const int file = open(Path("stdin").c_str(), O_RDONLY | O_CLOEXEC);
            const int status = RunWith(file, arguments);
            close(file);
            return status;
        }
        int ends[2];
        Check(pipe(ends) == 0, "pipe");
        CloseOnExec(ends);
        std::thread writer([&] {
            // If the command ends without reading, the write must fail instead of raising a signal.
            sigset_t broken;
            sigemptyset(&broken);
            sigaddset(&broken, SIGPIPE);
            pthread_sigmask(SIG_BLOCK, &broken, nullptr);
            // In two parts, so that one read seldom returns everything.
            const std::size_t half = input.size() / 2;
            for (const std::string& part : {input.substr(0, half), input.substr(half)}) {
                EXPECT_EQ(write(ends[1], part.data(), part.size()),
                          static_cast<ssize_t>(part.size()));
            }
            close(ends[1]);
        });
        const int status = RunWith(ends[0], arguments);
        close(ends[0]);  // now, so that a waiting writer goes on
        writer.join();
        return status;
    }

    std::string Path(const std::string& name) const { return m_folder.Path() / name; }

    std::string BytesOf(const std::string& name) const {
        std::ifstream file(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    const Bytes m_first = CountingBytes(32, 1);
    const Bytes m_second = CountingBytes(32, 101);
    TemporaryFolder m_folder;
    std::string m_out;
    std::string m_err;
};

TEST_F(OrvaStringsInput, IsAFileOrAKey) {
    const std::string first = Path("first.key");
    const std::string second = Path("second.key");
    const std::string readable = File(kTitle, kTitel);
    const std::string ofFirst = StoredFile(m_first);
    const std::string ofSecond = StoredFile(m_second);
    const std::string digits = ToHex(m_first);
    const std::string sections =
        ",\"sections\":[\n"
        "{\"name\":\"English\",\"line\":2,\"entries\":3,\"protected\":1,\"reachable\":true},\n"
        "{\"name\":\"Deutsch\",\"line\":6,\"entries\":2,\"protected\":1,\"reachable\":true}]}";
    const std::string decode =
        ": the value looks stored but does not decode: it was damaged or made with another key\n";
    const struct {
        std::vector<std::string> arguments;
        std::string input;
        std::string out;
        std::string err;
    } cases[] = {
        {{"protect", "--key-file", first, "-"}, readable, ofFirst, ""},
        {{"protect", "-"},
         readable,
         StoredFile(DevelopmentKey()),
         "orva-strings: note: protecting with the development key, which is public\n"},
        {{"protect", "--key-file", "-", Path("readable")}, digits + "\r\n", ofFirst, ""},
        {{"reveal", "--key-file", first, "-"}, ofFirst, readable, ""},
        {{"reveal", "-"}, StoredFile(DevelopmentKey()), readable, ""},
        {{"reveal", "--key-file", "-", Path("first")}, digits, readable, ""},
        {{"rekey", "--from", first, "--to", second, "-"}, ofFirst, ofSecond, ""},
        {{"rekey", "--from", first, "--to", second, "-"}, ofSecond, ofSecond, ""},
        {{"rekey", "--from", first, "--to", second, "-"}, readable, readable, ""},
        {{"rekey", "--from", "-", "--to", second, Path("first")}, digits + "\n", ofSecond, ""},
        {{"rekey", "--from", second, "--to", "-", Path("first")}, digits + "\n", ofFirst, ""},
        {{"rekey", "--to", "-", "--from", first, Path("first")}, ToHex(m_second), ofSecond, ""},
        {{"fix", "-"},
         "\xEF\xBB\xBFQVLANG=en\r\nMENU=\"x\"\r\nMENU=\"x\"\r\n",
         "QVLANG=en\r\nMENU=\"x\"\r\n",
         ""},
        {{"show", "--reveal", "-"},
         StoredFile(DevelopmentKey()),
         "IDE_TITLE=\"Register this copy\"\nMENU_OPEN=\"Open\"\nQVLANG=\"English\"\n",
         ""},
        {{"show", "--language", "Deutsch", "-", "IDE_TITLE"},
         StoredFile(DevelopmentKey()),
         "IDE_TITLE=(protected)\n",
         ""},
        {{"sections", "-"},
         ofFirst,
         "  LINE  ENTRIES  PROTECTED  SECTION\n"
         "     2        3          1  English\n"
         "     6        2          1  Deutsch\n",
         ""},
        {{"sections", "--stdin-name", "Editor", "--format", "json", "-", Path("first")},
         ofFirst,
         "{\"version\":1,\"files\":[\n{\"file\":\"Editor\"" + sections + ",\n{\"file\":\"" +
             Path("first") + "\"" + sections + "]}\n",
         ""},
        {{"show", "--all-languages", "--reveal", "--key-file", "-", Path("first"), "IDE_TITLE"},
         digits,
         "English: IDE_TITLE=\"Register this copy\"\nDeutsch: IDE_TITLE=\"Diese Kopie anmelden\"\n",
         ""},
        {{"reveal", "--lenient", "--key-file", second, "-"},
         ofFirst,
         ofFirst,
         "-:4: warning: IDE_TITLE" + decode + "-:7: warning: IDE_TITLE" + decode},
        {{"key", "show", "--key-file", "-"},
         digits + "\n",
         "fingerprint: 5354E832AC13176C\ndevelopment key: no\n",
         ""},
    };
    for (const auto& c : cases) {
        for (const Source source : {Source::kPipe, Source::kFile}) {
            SCOPED_TRACE(::testing::PrintToString(c.arguments));
            EXPECT_EQ(Run(source, c.input, c.arguments), 0);
            EXPECT_EQ(m_out, c.out);
            EXPECT_EQ(m_err, c.err);
        }
    }
}

TEST_F(OrvaStringsInput, ThatIsEmptyIsNeitherAFileNorAKey) {
    const std::string first = Path("first.key");
    const std::string second = Path("second.key");
    const std::string noSection = "-: error: the file has no section\n";
    const std::string noKey =
        "orva-strings: error: standard input: must hold 64 hexadecimal digits on one line, but has "
        "0 bytes\n";
    const struct {
        std::vector<std::string> arguments;
        int status;
        std::string err;
    } cases[] = {
        {{"protect", "--key-file", first, "-"}, 1, noSection},
        {{"reveal", "-"}, 1, noSection},
        {{"rekey", "--from", first, "--to", second, "-"}, 1, noSection},
        {{"rekey", "--from", first, "--to", second, "-o", Path("out"), "-"}, 1, noSection},
        {{"show", "-"}, 1, noSection},
        {{"show", "--fallback", "--language", "en", "-"}, 1, noSection},
        {{"sections", "-"}, 1, noSection},
        {{"protect", "--key-file", "-", Path("readable")}, 2, noKey},
        {{"reveal", "--in-place", "--key-file", "-", Path("first")}, 2, noKey},
        {{"rekey", "--from", "-", "--to", second, Path("first")}, 2, noKey},
        {{"rekey", "--from", first, "--to", "-", "--in-place", Path("first")}, 2, noKey},
        {{"key", "show", "--key-file", "-"}, 2, noKey},
    };
    for (const auto& c : cases) {
        for (const Source source : {Source::kPipe, Source::kFile}) {
            SCOPED_TRACE(::testing::PrintToString(c.arguments));
            EXPECT_EQ(Run(source, "", c.arguments), c.status);
            EXPECT_EQ(m_out, "");
            EXPECT_EQ(m_err, c.err);
        }
    }
    EXPECT_EQ(BytesOf("first"), StoredFile(m_first));
    EXPECT_NE(access(Path("out").c_str(), F_OK), 0);
}

TEST_F(OrvaStringsInput, MayBeClosed) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"protect", "-"},
          {"rekey", "--from", "-", "--to", Path("second.key"), Path("first")},
          {"show", "-"}}) {
        EXPECT_EQ(RunWith(-1, arguments), 2);
        EXPECT_EQ(m_out, "");
        EXPECT_EQ(m_err, "orva-strings: error: standard input: Bad file descriptor\n");
    }
}

TEST_F(OrvaStringsInput, IsReadFromItsCurrentPosition) {
    m_folder.Write("stdin", "12345" + StoredFile(m_first));
    const int file = open(Path("stdin").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(lseek(file, 5, SEEK_SET), 5);
    EXPECT_EQ(RunWith(file, {"reveal", "--key-file", Path("first.key"), "-"}), 0) << m_err;
    EXPECT_EQ(m_out, File(kTitle, kTitel));
    close(file);
}

// More than a pipe holds, and many times the size of a read.
TEST_F(OrvaStringsInput, MayBeLong) {
    std::string ofFirst = "QVLANG=en\n";
    std::string ofSecond = ofFirst;
    const std::string storedFirst = Stored(std::string(1000, 'x'), m_first);
    const std::string storedSecond = Stored(std::string(1000, 'x'), m_second);
    for (int i = 0; i < 500; ++i) {
        const std::string key = "IDE_" + std::to_string(i) + "=\"";
        ofFirst += key + storedFirst + "\"\n";
        ofSecond += key + storedSecond + "\"\n";
    }
    const std::vector<std::string> arguments = {"rekey", "--from",           Path("first.key"),
                                                "--to",  Path("second.key"), "-"};
    for (const Source source : {Source::kPipe, Source::kFile}) {
        EXPECT_EQ(Run(source, ofFirst, arguments), 0) << m_err;
        EXPECT_EQ(m_out == ofSecond, true) << m_out.size() << " bytes";
        EXPECT_EQ(m_err, "");
    }
}

TEST_F(OrvaStringsInput, IsTheKeyForAFileChangedInPlace) {
    for (const Source source : {Source::kPipe, Source::kFile}) {
        m_folder.Write("x", StoredFile(m_first));
        EXPECT_EQ(Run(source, ToHex(m_second),
                      {"rekey", "--from", Path("first.key"), "--to", "-", "--in-place", Path("x")}),
                  0)
            << m_err;
        EXPECT_EQ(m_out, "");
        EXPECT_EQ(m_err, Path("x") + ": rekeyed 2 entries\n");
        EXPECT_EQ(BytesOf("x"), StoredFile(m_second));
        EXPECT_EQ(
            Run(source, ToHex(m_second) + "\n",
                {"rekey", "--from", "-", "--to", Path("first.key"), "-o", Path("out"), Path("x")}),
            0)
            << m_err;
        EXPECT_EQ(m_out, "");
        EXPECT_EQ(m_err, Path("out") + ": rekeyed 2 entries\n");
        EXPECT_EQ(BytesOf("out"), StoredFile(m_first));
    }
}

}  // namespace
