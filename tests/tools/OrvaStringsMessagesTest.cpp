// How the tool's messages reach standard error: each line is one write, so that lines of runs that
// share a pipe do not mix.
#include <cerrno>
#include <climits>
#include <cstddef>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <optional>
#include <spawn.h>
#include <sstream>
#include <string>
#include <sys/socket.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"
#include "tests/support/CloseOnExec.h"

extern char** environ;  // NOLINT(readability-redundant-declaration): macOS has it in no header

namespace {

void Check(bool hasSucceeded, const char* what) {
    if (!hasSucceeded) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

// Two ends. A started program gets only the one it is given.
struct Ends {
    int ours;
    int theirs;
};

// Preserves the boundaries of writes: each read returns one write. Nothing if the system has no such
// socket, as macOS.
std::optional<Ends> MakeSocket() {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends) != 0) {
        Check(errno == EPROTONOSUPPORT, "socketpair");
        return std::nullopt;
    }
    CloseOnExec(ends);
    return Ends{ends[0], ends[1]};
}

Ends MakePipe() {
    int ends[2];
    Check(pipe(ends) == 0, "pipe");
    CloseOnExec(ends);
    return {ends[0], ends[1]};
}

// Everything that was read until all writers were gone, read by read. Closes the end.
std::vector<std::string> ReadAll(int end) {
    std::vector<std::string> reads;
    std::string buffer(1U << 20U, '\0');
    for (;;) {
        const ssize_t length = read(end, buffer.data(), buffer.size());
        Check(length >= 0, "read");
        if (length == 0) {
            close(end);
            return reads;
        }
        reads.push_back(buffer.substr(0, static_cast<std::size_t>(length)));
    }
}

class OrvaStringsMessages : public ::testing::Test {
protected:
    // Starts the tool with this standard error and no other output.
    static pid_t Start(std::vector<std::string> arguments, int err) {
        arguments.insert(arguments.begin(), ORVA_STRINGS);
        std::vector<char*> pointers;
        for (std::string& argument : arguments) {
            pointers.push_back(argument.data());
        }
        pointers.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_adddup2(&actions, err, STDERR_FILENO);
        pid_t process = 0;
        errno = posix_spawn(&process, ORVA_STRINGS, &actions, nullptr, pointers.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        Check(errno == 0, ORVA_STRINGS);
        return process;
    }

    static int StatusOf(pid_t process) {
        int status = 0;
        Check(waitpid(process, &status, 0) == process, "waitpid");
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    std::string Write(const std::string& name, const std::string& bytes) const {
        m_folder.Write(name, bytes);
        return m_folder.Path() / name;
    }

    TemporaryFolder m_folder;
};

TEST_F(OrvaStringsMessages, AreOneWriteEach) {
    const std::string bad = std::string(64, '0');
    const std::string file =
        Write("file", "QVLANG=en\nIDE_A=\"" + bad + "\"\nMENU=\"x\"\nIDE_B=\"" + bad + "\"\n");
    const std::string longKey = "IDE_" + std::string(100'000, 'K');
    const std::string longLine = Write("long", "QVLANG=en\n" + longKey + "=\"" + bad + "\"\n");
    const std::string broken = Write("broken", " QVLANG=en\nIDE_A=\"x\"\n");
    const std::string key = Write("key", std::string(64, '1'));
    const std::string why =
        ": the value looks stored but does not decode: it was damaged or made with another key\n";
    const std::string note =
        "orva-strings: note: protecting with the development key, which is public\n";
    const struct {
        std::vector<std::string> arguments;
        int status;
        std::vector<std::string> writes;
    } cases[] = {
        {{"reveal", file}, 1, {file + ":2: error: IDE_A" + why, file + ":4: error: IDE_B" + why}},
        {{"reveal", longLine}, 1, {longLine + ":2: error: " + longKey + why}},
        {{"protect", file, "--key-file", file},
         2,
         {"orva-strings: error: " + file +
          ": must hold 64 hexadecimal digits on one line, but has " +
          std::to_string(std::filesystem::file_size(file)) + " bytes\n"}},
        {{"show", file, "MENU", "NOT_THERE"},
         1,
         {file + ": error: NOT_THERE: there is no such key in the section\n"}},
        {{"show", "--all-languages", file, "menu"},
         1,
         {file +
          ":1: error: menu: there is no such key in the section 'en'; did you mean 'MENU'?\n"}},
        {{"sections", "-"}, 1, {"-: error: the file has no section\n"}},
        {{"reveal", "--lenient", file, "-o", "/dev/null/x"},
         2,
         {file + ":2: warning: IDE_A" + why, file + ":4: warning: IDE_B" + why,
          "orva-strings: error: /dev/null/x: Not a directory\n"}},
        {{"sections", file + ".missing"},
         2,
         {"orva-strings: error: " + file + ".missing: No such file or directory\n"}},
        {{"protect", "--in-place", "-"},
         2,
         {"orva-strings: error: --in-place needs a file, not -\n"}},
        {{"fix", "--check", broken, broken},
         1,
         {broken + ": would mend 1 line\n", broken + ": would mend 1 line\n"}},
        {{"fix", broken}, 0, {broken + ": mended 1 line\n"}},
        {{"protect", "--key-file", key, "--in-place", broken},
         0,
         {broken + ": protected 1 entry\n"}},
        {{"protect"}, 2, {"orva-strings: error: FILE is required (see --help)\n"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.arguments));
        const std::optional<Ends> ends = MakeSocket();
        if (!ends) {
            GTEST_SKIP() << "this system has no socket that keeps writes apart";
        }
        const pid_t process = Start(c.arguments, ends->theirs);
        close(ends->theirs);
        EXPECT_EQ(ReadAll(ends->ours), c.writes);
        EXPECT_EQ(StatusOf(process), c.status);
    }
}

TEST_F(OrvaStringsMessages, StayWholeInOnePipe) {
    constexpr int kRuns = 8;
    constexpr int kFindings = 200;
    const std::string bad = std::string(64, '0');
    std::vector<std::string> files;
    std::map<std::string, int> expected;
    for (int run = 0; run < kRuns; ++run) {
        std::string bytes = "QVLANG=en\n";
        const std::string file = m_folder.Path() / std::to_string(run);
        for (int i = 0; i < kFindings; ++i) {
            const std::string key = "IDE_KEY_" + std::to_string(i);
            bytes += key + "=\"" + bad + "\"\n";
            const std::string line = file + ':' + std::to_string(i + 2) + ": error: " + key +
                                     ": the value looks stored but does not decode: it was damaged "
                                     "or made with another key";
            ASSERT_LT(line.size(), static_cast<std::size_t>(PIPE_BUF));
            ++expected[line];
        }
        files.push_back(Write(std::to_string(run), bytes));
    }

    const Ends ends = MakePipe();
    std::vector<pid_t> processes;
    for (const std::string& file : files) {
        processes.push_back(Start({"reveal", file}, ends.theirs));
    }
    close(ends.theirs);
    std::string all;
    for (const std::string& part : ReadAll(ends.ours)) {
        all += part;
    }
    for (const pid_t process : processes) {
        EXPECT_EQ(StatusOf(process), 1);
    }
    std::map<std::string, int> lines;
    std::istringstream stream(all);
    for (std::string line; std::getline(stream, line);) {
        ++lines[line];
    }
    EXPECT_EQ(lines, expected);
}

}  // namespace
