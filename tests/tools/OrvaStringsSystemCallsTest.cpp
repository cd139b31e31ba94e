// Which system calls a command makes for a file, in which order, and what happens to the file if
// one fails. support/SystemCalls.h records the calls and supplies the random bytes.
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numeric>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"
#include "tests/support/SystemCalls.h"
#include "tools/orva-strings/Tool.h"
#include "tools/orva-strings/system/Files.h"

using namespace std::literals;  // for texts that hold NUL bytes

namespace {

using Texts = std::vector<std::string>;

const std::string kPlain = "QVLANG=en\nMENU=\"Open\"\nIDE_TITLE=\"Title\"\n";
const std::string kOther = "whatever\n";
const std::string kLibrary = "libOrvaLanguage key fingerprint: 0123456789ABCDEF\0"s;
const std::string kCountedKey =
    "A1A2A3A4A5A6A7A8A9AAABACADAEAFB0B1B2B3B4B5B6B7B8B9BABBBCBDBEBFC0\n";

// A call, and what the command reports if it fails; null: it goes on.
struct Step {
    std::string call;
    const char* reported;
};
using Steps = std::vector<Step>;

const char* const kGoesOn = nullptr;
const char kReported[] = "file: Input/output error";
const char kReportedWithoutPath[] = "Input/output error";  // worded by the standard library
const char kChanged[] = "file: another program has changed it in the meantime";

bool Begins(const std::string& text, const std::string& begin) {
    return text.compare(0, begin.size(), begin) == 0;
}

// What the library does with the copy that show makes for it. The standard libraries read in
// different ways, and the files they open have no names in the recorded calls.
bool IsOfALoad(const std::string& call) {
    return Begins(call, "stat TMP") || Begins(call, "fopen TMP") ||
           (Begins(call, "read ") && call.find_first_not_of("0123456789", 5) == std::string::npos);
}

// Runs commands in a folder of their own. It is the current one, so that names are short.
class OrvaStringsSystemCalls : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(chdir(m_folder.Path().c_str()), 0);
        ASSERT_EQ(mkdir("tmp", 0700), 0);
        setenv("TMPDIR", "tmp", 1);
        sigset_t held;  // a signal that is already blocked and must stay so
        sigemptyset(&held);
        sigaddset(&held, SIGUSR1);
        pthread_sigmask(SIG_BLOCK, &held, &m_signals);
        m_folder.Write("plain", kPlain);
        Run({"protect", "plain"});
        m_stored = m_out;
        ASSERT_NE(m_stored, kPlain);
    }
    void TearDown() override {
        umask(m_mask);
        pthread_sigmask(SIG_SETMASK, &m_signals, nullptr);
        unsetenv("TMPDIR");
        ASSERT_EQ(chdir("/"), 0);
    }

    // Creates the files that a command finds: the file with these bytes, or no file if they are
    // empty.
    void MakeFiles(const std::string& bytes) {
        std::filesystem::remove("file");
        if (!bytes.empty()) {
            m_folder.Write("file", bytes);
            ASSERT_EQ(chmod("file", 0640), 0);
        }
        m_folder.Write("stored", m_stored);
    }

    // Runs a command and records its calls. Earlier calls only look at the names in the arguments,
    // so the record starts with the first call that opens or makes something. It omits the
    // library's calls for a load, which have tests of their own. refuse is given each recorded call
    // and answers as for SystemCalls.
    void Run(const Texts& arguments, const SystemCalls::Refuse& refuse = nullptr,
             const std::vector<std::uint8_t>& random = SystemCalls::Counting()) {
        std::ostringstream out;
        std::ostringstream err;
        m_arguments = arguments;
        m_calls.clear();
        const SystemCalls calls(
            [&](const std::string& call) {
                if (IsOfALoad(call) || (m_calls.empty() && Begins(call, "stat "))) {
                    return 0;
                }
                m_calls.push_back(call);
                return refuse ? refuse(call) : 0;
            },
            random, m_alter);
        m_status = RunTool(arguments, ReadStandardInput, out, err);
        m_out = out.str();
        m_err = err.str();
        EXPECT_TRUE(SystemCalls::Open().empty())
            << "stays open: " << SystemCalls::Open().begin()->second;
    }

    // Runs a command whose n-th call fails, counting from 0.
    void RunFailing(const Texts& arguments, std::size_t n) {
        std::size_t count = 0;
        Run(arguments, [&](const std::string&) { return count++ == n ? EIO : 0; });
        EXPECT_EQ(std::count(m_calls.begin(), m_calls.end(), "hold signals"),
                  std::count(m_calls.begin(), m_calls.end(), "release signals"));
    }

    // What a command says of a file that it has written.
    std::string Said() const {
        if (m_arguments[0] == "fix") {
            return m_arguments[1] + ": mended 1 line\n";
        }
        if (m_arguments[0] == "keys") {
            return "file: wrote 3 constants\n";
        }
        return m_arguments[0] == "reveal" ? m_arguments[2] + ": revealed 1 entry\n" : "";
    }

    // Checks how a failed call is reported.
    void ExpectReported(const char* reason) const {
        if (reason == kGoesOn) {
            EXPECT_EQ(m_status, 0);
            EXPECT_EQ(m_err, Said());
            return;
        }
        EXPECT_EQ(m_status, 2);
        EXPECT_TRUE(Begins(m_err, "orva-strings: error: ")) << m_err;
        EXPECT_NE(m_err.find(reason), std::string::npos) << m_err;
    }

    // Runs the command, which must make these calls, and again for each of them that fails. The
    // file keeps its old bytes until the call that gives it the new ones succeeds, and nothing is
    // left beside it. Empty bytes mean no file.
    void ExpectSteps(const Texts& arguments, const Steps& steps, const std::string& old,
                     const std::string& renewed, const std::string& turn) {
        MakeFiles(old);
        const std::set<std::string> others = Names();
        Run(arguments);
        ExpectReported(kGoesOn);
        EXPECT_EQ(BytesOf("file"), renewed);
        const std::string output = m_out;
        Texts expected;
        for (const Step& step : steps) {
            expected.push_back(step.call);
        }
        ASSERT_EQ(m_calls, expected);
        bool isReplaced = false;
        for (std::size_t n = 0; n < steps.size(); ++n) {
            const Step& step = steps[n];
            SCOPED_TRACE("call " + std::to_string(n) + " fails: " + step.call);
            MakeFiles(old);
            RunFailing(arguments, n);
            ExpectReported(step.reported);
            const bool isNew = isReplaced || step.reported == kGoesOn;
            EXPECT_EQ(BytesOf("file"), isNew ? renewed : old);
            EXPECT_EQ(m_out, step.reported == kGoesOn ? output : "");
            std::set<std::string> names = others;
            if (isNew && !renewed.empty()) {
                names.insert("file");
            }
            EXPECT_EQ(Names(), names);
            isReplaced = isReplaced || step.call == turn;
        }
    }

    static std::string BytesOf(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }

    static mode_t ModeOf(const std::string& path) {
        struct stat status = {};
        return lstat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
    }

    // Everything in the folder, including its subfolders.
    static std::set<std::string> Names() {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(".")) {
            names.insert(entry.path().lexically_normal().string());
        }
        return names;
    }

    TemporaryFolder m_folder;
    const mode_t m_mask = umask(022);
    sigset_t m_signals = {};
    std::string m_stored;
    SystemCalls::Alter m_alter;
    int m_status = 0;
    std::string m_out;
    std::string m_err;
    Texts m_arguments;
    Texts m_calls;
};

TEST_F(OrvaStringsSystemCalls, ReplaceAFileInPlace) {
    const Steps steps = {
        {"open file O_RDONLY|O_CLOEXEC", kReported},
        {"fstat file", kReported},
        {"read file", kReported},
        {"read file", kReported},
        {"close file", kGoesOn},
        {"lstat file", kReportedWithoutPath},
        {"open . O_RDONLY|O_DIRECTORY|O_CLOEXEC", kReported},
        {"hold signals", kGoesOn},
        {"getentropy 3", kReported},
        {"open file.A1A2A3 O_WRONLY|O_CREAT|O_EXCL|O_CLOEXEC 600", kReported},
        {"write file.A1A2A3", kReported},
        {"fchown file.A1A2A3 owner", kGoesOn},
        {"getxattr file system.posix_acl_access", kGoesOn},
        {"fremovexattr file.A1A2A3 system.posix_acl_access", kGoesOn},
        {"fchmod file.A1A2A3 640", kReported},
        {"fsync file.A1A2A3", kReported},
        {"close file.A1A2A3", kReported},
        {"stat file", kChanged},
        {"open file O_RDONLY|O_NOCTTY|O_NONBLOCK|O_CLOEXEC", kReported},
        {"fstat file", kReported},
        {"read file", kReported},
        {"read file", kReported},
        {"close file", kReported},
        {"stat file", kChanged},
        {"lstat file", kReported},
        {"rename file.A1A2A3 file", kReported},
        {"fsync .", kReported},
        {"release signals", kGoesOn},
        {"close .", kGoesOn},
    };
    ExpectSteps({"reveal", "--in-place", "file"}, steps, m_stored, kPlain,
                "rename file.A1A2A3 file");
    ExpectSteps({"fix", "file"}, steps, "\xEF\xBB\xBF" + kPlain, kPlain, "rename file.A1A2A3 file");
}

TEST_F(OrvaStringsSystemCalls, ReplaceAnOutputFile) {
    const Steps steps = {
        {"open stored O_RDONLY|O_CLOEXEC", "stored: Input/output error"},
        {"fstat stored", "stored: Input/output error"},
        {"read stored", "stored: Input/output error"},
        {"read stored", "stored: Input/output error"},
        {"close stored", kGoesOn},
        {"stat file", kReported},
        {"lstat file", kReportedWithoutPath},
        {"open . O_RDONLY|O_DIRECTORY|O_CLOEXEC", kReported},
        {"hold signals", kGoesOn},
        {"getentropy 3", kReported},
        {"open file.A1A2A3 O_WRONLY|O_CREAT|O_EXCL|O_CLOEXEC 600", kReported},
        {"write file.A1A2A3", kReported},
        {"fchown file.A1A2A3 owner", kGoesOn},
        {"getxattr file system.posix_acl_access", kGoesOn},
        {"fremovexattr file.A1A2A3 system.posix_acl_access", kGoesOn},
        {"fchmod file.A1A2A3 640", kReported},
        {"fsync file.A1A2A3", kReported},
        {"close file.A1A2A3", kReported},
        {"lstat file", kReported},
        {"rename file.A1A2A3 file", kReported},
        {"fsync .", kReported},
        {"release signals", kGoesOn},
        {"close .", kGoesOn},
    };
    ExpectSteps({"reveal", "-o", "file", "stored"}, steps, kOther, kPlain,
                "rename file.A1A2A3 file");
}

// Its mode is that of any new file under the umask.
TEST_F(OrvaStringsSystemCalls, MakeAnOutputFile) {
    const Steps steps = {
        {"open stored O_RDONLY|O_CLOEXEC", "stored: Input/output error"},
        {"fstat stored", "stored: Input/output error"},
        {"read stored", "stored: Input/output error"},
        {"read stored", "stored: Input/output error"},
        {"close stored", kGoesOn},
        {"stat file", kReported},
        {"lstat file", kReportedWithoutPath},
        {"open . O_RDONLY|O_DIRECTORY|O_CLOEXEC", kReported},
        {"hold signals", kGoesOn},
        {"getentropy 3", kReported},
        {"open file.A1A2A3 O_WRONLY|O_CREAT|O_EXCL|O_CLOEXEC 666", kReported},
        {"write file.A1A2A3", kReported},
        {"fsync file.A1A2A3", kReported},
        {"close file.A1A2A3", kReported},
        {"rename file.A1A2A3 file", kReported},
        {"fsync .", kReported},
        {"release signals", kGoesOn},
        {"close .", kGoesOn},
    };
    ExpectSteps({"reveal", "-o", "file", "stored"}, steps, "", kPlain, "rename file.A1A2A3 file");
    umask(027);
    MakeFiles("");
    Run({"reveal", "-o", "file", "stored"});
    EXPECT_EQ(ModeOf("file"), 0640U);
}

// The file has its old bytes until it gets the new ones, whichever call fails.
TEST_F(OrvaStringsSystemCalls, WriteConstants) {
    Run({"keys", "--language", "c", "plain"});
    const std::string constants = m_out;
    const Texts arguments = {"keys", "--language", "c", "-o", "file", "plain"};
    for (const std::string old : {"", "/* Generated by orva-strings keys */"}) {
        MakeFiles(old);
        const std::set<std::string> others = Names();
        Run(arguments);
        ExpectReported(kGoesOn);
        const Texts calls = m_calls;
        const auto turn = std::find(calls.begin(), calls.end(), "rename file.A1A2A3 file");
        ASSERT_NE(turn, calls.end());
        const auto turnNumber = static_cast<std::size_t>(turn - calls.begin());
        std::size_t reported = 0;
        for (std::size_t n = 0; n < calls.size(); ++n) {
            SCOPED_TRACE("call " + std::to_string(n) + " fails: " + calls[n]);
            MakeFiles(old);
            RunFailing(arguments, n);
            ExpectReported(m_status == 0 ? kGoesOn : "Input/output error");
            reported += m_status == 0 ? 0 : 1;
            const bool isNew = m_status == 0 || n > turnNumber;
            EXPECT_EQ(BytesOf("file"), isNew ? constants : old);
            std::set<std::string> names = others;
            if (isNew) {
                names.insert("file");
            }
            EXPECT_EQ(Names(), names);
        }
        EXPECT_GE(reported, 12U);
    }
}

// Each failure is reported, or nobody need know of it.
TEST_F(OrvaStringsSystemCalls, ReadSources) {
    ASSERT_EQ(mkdir("sources", 0700), 0);
    m_folder.Write("sources/a.c", "ZuGetLocalizedString(\"MENU\");");
    m_folder.Write("sources/b.c", "KEY_IDE_TITLE;");
    const Texts arguments = {"usage", "--source", "sources", "plain"};
    Run(arguments);
    const Texts calls = m_calls;
    EXPECT_EQ(m_out, "no findings in 3 files\n");
    std::set<std::string> reported;
    for (std::size_t n = 0; n < calls.size(); ++n) {
        SCOPED_TRACE(calls[n]);
        RunFailing(arguments, n);
        if (m_err.empty()) {
            EXPECT_EQ(m_out, "no findings in 3 files\n");
            continue;
        }
        EXPECT_NE(m_err.find("Input/output error"), std::string::npos) << m_err;
        reported.insert(calls[n]);
    }
    for (const char* const file : {"plain", "sources/a.c", "sources/b.c"}) {
        EXPECT_EQ(reported.count("open " + std::string(file) + " O_RDONLY|O_CLOEXEC"), 1U) << file;
        EXPECT_EQ(reported.count("read " + std::string(file)), 1U) << file;
    }
}

// A key whose name may not survive is removed as well: after an error there is no key.
TEST_F(OrvaStringsSystemCalls, MakeAKeyFile) {
    const Steps steps = {
        {"getentropy 32", "the system's random source: Input/output error"},
        {"open . O_RDONLY|O_DIRECTORY|O_CLOEXEC", kReported},
        {"hold signals", kGoesOn},
        {"open file O_WRONLY|O_CREAT|O_EXCL|O_CLOEXEC 600", kReported},
        {"fchmod file 600", kReported},
        {"write file", kReported},
        {"fsync file", kReported},
        {"close file", kReported},
        {"fsync .", kReported},
        {"release signals", kGoesOn},
        {"close .", kGoesOn},
    };
    ExpectSteps({"key", "new", "file"}, steps, "", kCountedKey, "close .");
    EXPECT_EQ(ModeOf("file"), 0600U);
}

TEST_F(OrvaStringsSystemCalls, ReadAKeyFile) {
    const Steps steps = {
        {"open file O_RDONLY|O_CLOEXEC", kReported},
        {"fstat file", kReported},
        {"read file", kReported},
        {"read file", kReported},
        {"close file", kGoesOn},
    };
    ExpectSteps({"key", "show", "--key-file", "file"}, steps, kCountedKey, kCountedKey, "");
}

TEST_F(OrvaStringsSystemCalls, ReadALibrary) {
    const Steps steps = {
        {"open file O_RDONLY|O_CLOEXEC", kReported},
        {"read file", kReported},
        {"read file", kReported},
        {"close file", kGoesOn},
    };
    ExpectSteps({"key", "show", "--library", "file"}, steps, kLibrary, kLibrary, "");
}

TEST_F(OrvaStringsSystemCalls, ReadStandardInput) {
    MakeFiles("");
    const int before = dup(STDIN_FILENO);
    const int stored = open("stored", O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(dup2(stored, STDIN_FILENO), STDIN_FILENO);
    Run({"reveal", "-"});
    EXPECT_EQ(m_out, kPlain);
    ASSERT_EQ(m_calls, (Texts{"dup 0", "read copy", "read copy", "close copy"}));
    for (const std::size_t n : {0U, 1U, 2U}) {
        lseek(stored, 0, SEEK_SET);
        RunFailing({"reveal", "-"}, n);
        ExpectReported("standard input: Input/output error");
        EXPECT_EQ(m_out, "");
    }
    dup2(before, STDIN_FILENO);
    close(stored);
    close(before);
}

TEST_F(OrvaStringsSystemCalls, MakeACopyToShow) {
    const std::string copy = "TMP/Contents/Resources/strings";
    const char copyReported[] = "/Contents/Resources/strings: Input/output error";
    const Steps steps = {
        {"open file O_RDONLY|O_CLOEXEC", kReported},
        {"fstat file", kReported},
        {"read file", kReported},
        {"read file", kReported},
        {"close file", kGoesOn},
        {"hold signals", kGoesOn},
        {"mkdtemp tmp/orva-XXXXXX", "tmp/orva-XXXXXX: Input/output error"},
        {"mkdir TMP/Contents 700", "/Contents: Input/output error"},
        {"mkdir TMP/Contents/Resources 700", "/Contents/Resources: Input/output error"},
        {"open " + copy + " O_RDWR|O_CREAT|O_EXCL|O_CLOEXEC 600", copyReported},
        {"unlink " + copy, copyReported},  // so that no named file holds anything
        {"fchmod " + copy + " 600", copyReported},
        {"write " + copy, copyReported},
        {"lseek " + copy, copyReported},
        {"symlink " + copy, copyReported},
        {"close " + copy, kGoesOn},
        {"release signals", kGoesOn},
    };
    ExpectSteps({"show", "file"}, steps, m_stored, m_stored, "");
}

// If one of the library's own calls for a load fails, that ends the command or changes nothing.
TEST_F(OrvaStringsSystemCalls, LoadTheCopyWholeOrNotAtAll) {
    const std::string longText(100000, 'x');
    // If reading fails before the header, the library takes the first section; here it is as large.
    m_folder.Write("long", "QVLANG=de\nOTHER=\"\"\nMENU=\"" + longText +
                               "\"\nMORE=\"\"\nLAST=\"\"\n" + m_stored + "MORE=\"" + longText +
                               "\"\nLAST=\"text\"\n");
    Run({"show", "--language", "en", "long"});
    const std::string whole = m_out;
    ASSERT_NE(whole.find("LAST=\"text\"\n"), std::string::npos);
    std::set<std::string> reasons;
    bool wasMade = true;
    bool hasRead = false;  // in calls that are recorded
    for (std::size_t n = 0; wasMade; ++n) {
        std::size_t count = 0;
        std::ostringstream out;
        std::ostringstream err;
        const SystemCalls calls([&](const std::string& call) {
            hasRead = hasRead || (IsOfALoad(call) && Begins(call, "read "));
            return IsOfALoad(call) && count++ == n ? EIO : 0;
        });
        const int status =
            RunTool({"show", "--language", "en", "long"}, ReadStandardInput, out, err);
        wasMade = count > n;
        EXPECT_EQ(out.str(), status == 0 ? whole : "") << n;
        EXPECT_EQ(status, err.str().empty() ? 0 : 2) << n;
        reasons.insert(err.str().substr(err.str().rfind(": ") + 1));
    }
    EXPECT_EQ(reasons.count(" the library could not load the copy made there\n"), 1U);
    EXPECT_EQ(reasons.count(" the library could not load the whole section\n"), hasRead ? 1U : 0U);
}

// The new file is in the folder of the file that it replaces, not in that of a link to it.
TEST_F(OrvaStringsSystemCalls, MakeTheNewFileBesideTheOldOne) {
    ASSERT_EQ(mkdir("folder", 0700), 0);
    MakeFiles("");
    ASSERT_EQ(symlink("folder/target", "link"), 0);
    const struct {
        Texts arguments;
        std::string folder;
        std::string file;
    } cases[] = {
        {{"reveal", "-o", "folder/target", "stored"}, "folder/", "folder/target"},
        {{"reveal", "-o", "link", "stored"}, "folder/", "folder/target"},
        {{"reveal", "-o", "./other", "stored"}, "./", "./other"},
        {{"reveal", "-o", "/nowhere/other", "stored"}, "/nowhere/", ""},
    };
    for (const auto& [arguments, folder, file] : cases) {
        Run(arguments);
        const Texts all = m_calls;
        const auto made = [&](const std::string& call) {
            return std::count(all.begin(), all.end(), call);
        };
        EXPECT_EQ(made("open " + folder + " O_RDONLY|O_DIRECTORY|O_CLOEXEC"), 1) << arguments[2];
        if (file.empty()) {
            ExpectReported("/nowhere/other: No such file or directory");
            continue;
        }
        ExpectReported(kGoesOn);
        EXPECT_EQ(made("open " + file + ".A1A2A3 O_WRONLY|O_CREAT|O_EXCL|O_CLOEXEC 666"), 1)
            << file;
        EXPECT_EQ(made("rename " + file + ".A1A2A3 " + file), 1) << file;
        EXPECT_EQ(made("fsync " + folder), 1) << file;
        EXPECT_EQ(BytesOf(file), kPlain);
        EXPECT_TRUE(std::filesystem::remove(file));
    }
    EXPECT_TRUE(std::filesystem::is_symlink("link"));
}

TEST_F(OrvaStringsSystemCalls, NameTheNewFileByThreeRandomBytes) {
    const struct {
        std::vector<std::uint8_t> random;
        std::string name;
    } cases[] = {
        {{0x01, 0x9A, 0xFF, 0x77}, "file.019AFF"},
        {{0xEF, 0x00, 0x5B, 0x77}, "file.EF005B"},
    };
    for (const auto& [random, name] : cases) {
        MakeFiles(m_stored);
        Run({"reveal", "--in-place", "file"}, nullptr, random);
        EXPECT_EQ(std::count(m_calls.begin(), m_calls.end(), "getentropy 3"), 1);
        EXPECT_EQ(std::count(m_calls.begin(), m_calls.end(), "rename " + name + " file"), 1)
            << name;
        EXPECT_EQ(BytesOf("file"), kPlain);
    }
}

// What is there under the name already stays as it is, and a link is not followed.
TEST_F(OrvaStringsSystemCalls, TakeAnotherNameWhereOneIsTaken) {
    MakeFiles(m_stored);
    m_folder.Write("file.010203", kOther);
    ASSERT_EQ(symlink("nowhere", "file.040506"), 0);
    ASSERT_EQ(symlink("plain", "file.070809"), 0);
    ASSERT_EQ(mkdir("file.0A0B0C", 0700), 0);
    const std::set<std::string> names = Names();
    std::vector<std::uint8_t> random(15);
    std::iota(random.begin(), random.end(), static_cast<std::uint8_t>(1));
    Run({"reveal", "--in-place", "file"}, nullptr, random);
    ExpectReported(kGoesOn);
    EXPECT_EQ(std::count(m_calls.begin(), m_calls.end(), "getentropy 3"), 5);
    EXPECT_EQ(std::count(m_calls.begin(), m_calls.end(), "rename file.0D0E0F file"), 1);
    EXPECT_EQ(BytesOf("file"), kPlain);
    EXPECT_EQ(BytesOf("file.010203"), kOther);
    EXPECT_EQ(BytesOf("plain"), kPlain);
    EXPECT_EQ(Names(), names);

    MakeFiles(m_stored);
    random.resize(12);
    Run({"reveal", "--in-place", "file"}, nullptr, random);  // every name is taken
    ExpectReported(kReported);
    EXPECT_EQ(BytesOf("file"), m_stored);
    EXPECT_EQ(Names(), names);
}

// A key is what the random source gave: all of it and nothing else.
TEST_F(OrvaStringsSystemCalls, MakeAKeyOf32RandomBytes) {
    std::vector<std::uint8_t> random(32, 0x5A);
    random.front() = 0x00;
    random.back() = 0xFF;
    const std::string digits = "005A5A5A5A5A5A5A5A5A5A5A5A5A5A5A5A5A5A5A5A5A5A5A5A5A5A5A5A5A5AFF\n";
    for (const auto& [bytes, text] :
         {std::pair(random, digits), std::pair(SystemCalls::Counting(), kCountedKey)}) {
        std::filesystem::remove("key");
        Run({"key", "new", "key"}, nullptr, bytes);
        ExpectReported(kGoesOn);
        EXPECT_EQ(BytesOf("key"), text);
        Run({"key", "new", "-"}, nullptr, bytes);
        EXPECT_EQ(m_calls, Texts{"getentropy 32"});
        EXPECT_EQ(m_out, text);
    }
    random.pop_back();
    Run({"key", "new", "-"}, nullptr, random);
    ExpectReported("the system's random source: Input/output error");
    EXPECT_EQ(m_out, "");
}

// Writes to no existing file, nor through a link that leads elsewhere.
TEST_F(OrvaStringsSystemCalls, MakeAKeyFileOnlyUnderANewName) {
    m_folder.Write("taken", kOther);
    ASSERT_EQ(symlink("nowhere", "link"), 0);
    const std::set<std::string> names = Names();
    for (const char* const name : {"taken", "link"}) {
        Run({"key", "new", name});
        ExpectReported((std::string(name) + ": File exists").c_str());
        EXPECT_EQ(Names(), names);
    }
    EXPECT_EQ(BytesOf("taken"), kOther);
}

// From the moment they exist, even with a umask of 0.
TEST_F(OrvaStringsSystemCalls, GiveNobodyElseAccessBeforeTheEnd) {
    umask(0);
    MakeFiles(m_stored);
    m_folder.Write("out", kOther);
    ASSERT_EQ(chmod("out", 0664), 0);
    const struct {
        Texts arguments;
        std::string made;
        std::string last;   // the last call at which nobody else has rights
        mode_t mode;        // after it
        std::size_t calls;  // while the file exists under its name
    } cases[] = {
        {{"reveal", "--in-place", "file"}, "file.A1A2A3", "fchmod file.A1A2A3 640", 0640, 16},
        {{"reveal", "-o", "out", "stored"}, "out.A1A2A3", "fchmod out.A1A2A3 664", 0664, 9},
        {{"key", "new", "key"}, "key", "close .", 0, 7},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments[0]);
        mode_t expected = 0600;
        std::size_t seen = 0;
        Run(c.arguments, [&](const std::string& call) {
            if (std::filesystem::exists(c.made)) {
                EXPECT_EQ(ModeOf(c.made), expected) << "at " << call;
                ++seen;
            }
            expected = call == c.last ? c.mode : expected;
            return 0;
        });
        ExpectReported(kGoesOn);
        EXPECT_EQ(seen, c.calls);
    }
    EXPECT_EQ(ModeOf("key"), 0600U);
}

TEST_F(OrvaStringsSystemCalls, LetNobodyElseIntoTheTemporaryFolder) {
    umask(0);
    MakeFiles(m_stored);
    std::size_t seen = 0;
    Run({"show", "file"}, [&](const std::string& call) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator("tmp")) {
            if (!entry.is_symlink()) {
                EXPECT_EQ(ModeOf(entry.path()), entry.is_directory() ? 0700U : 0600U)
                    << entry.path() << " at " << call;
                ++seen;
            }
        }
        return 0;
    });
    ExpectReported(kGoesOn);
    EXPECT_EQ(seen, 25U);
}

// If any of these differs when the file is checked again, by descriptor or by name.
TEST_F(OrvaStringsSystemCalls, ReplaceNothingButTheFileThatWasRead) {
    const std::pair<const char*, void (*)(struct stat&)> changes[] = {
        {"device", [](struct stat& status) { ++status.st_dev; }},
        {"number", [](struct stat& status) { ++status.st_ino; }},
        {"mode", [](struct stat& status) { status.st_mode ^= 0100U; }},
        {"kind", [](struct stat& status) { status.st_mode ^= S_IFREG | S_IFIFO; }},
        {"owner", [](struct stat& status) { ++status.st_uid; }},
        {"group", [](struct stat& status) { ++status.st_gid; }},
    };
    const Texts inPlace = {"reveal", "--in-place", "file"};
    const Texts output = {"reveal", "-o", "file", "stored"};
    for (const auto& c : {std::pair(inPlace, "fstat file"), std::pair(inPlace, "lstat file"),
                          std::pair(output, "lstat file")}) {
        for (const auto& change : changes) {
            SCOPED_TRACE(std::string("another ") + change.first + " by the second " + c.second +
                         " of " + c.first[1]);
            MakeFiles(m_stored);
            const std::set<std::string> names = Names();
            int count = 0;
            m_alter = [&](const std::string& made, struct stat& status) {
                if (made == c.second && ++count == 2) {
                    change.second(status);
                }
            };
            Run(c.first);
            EXPECT_EQ(count, 2);
            ExpectReported(kChanged);
            EXPECT_EQ(BytesOf("file"), m_stored);
            EXPECT_EQ(Names(), names);
        }
    }
}

// Without the owner, setuid and setgid go. Without the group or the list, group and others get no
// more than both had.
TEST_F(OrvaStringsSystemCalls, NarrowTheModeWhereRightsCannotBeCopied) {
    // How the refused calls begin, and their errors.
    using Refused = std::vector<std::pair<std::string, int>>;
    const Refused nothing;
    const Refused owner = {{"fchown file.A1A2A3 owner", EPERM}};
    const Refused group = {{"fchown file.A1A2A3 ", EPERM}};
    const Refused list = {{"getxattr file ", ENODATA}, {"fremovexattr file.A1A2A3 ", EPERM}};
    const struct {
        Refused refused;
        mode_t before;
        mode_t after;
    } cases[] = {
        {nothing, 06754, 06754},
        {owner, 06754, 0754},
        {group, 06754, 0744},
        {group, 0664, 0644},
        {group, 0604, 0600},
        {group, 0701, 0700},
        {group, 0640, 0600},
        {list, 06754, 0744},
        {list, 0664, 0644},
        {list, 0604, 0600},
        {list, 0701, 0700},
        {list, 0640, 0600},
        {{{"getxattr file ", EIO}}, 0664, 0644},
        {{{"getxattr file ", ENODATA}, {"fremovexattr ", EIO}}, 0664, 0644},
        {{{"getxattr file ", ENOTSUP}, {"fremovexattr ", EIO}}, 0664, 0644},
        {{{"getxattr file ", ENODATA}, {"fremovexattr ", ENODATA}}, 0664, 0664},
        {{{"getxattr file ", ENOTSUP}, {"fremovexattr ", ENOTSUP}}, 0664, 0664},
    };
    for (const auto& c : cases) {
        MakeFiles(m_stored);
        ASSERT_EQ(chmod("file", c.before), 0);
        Run({"reveal", "--in-place", "file"}, [&](const std::string& call) {
            const auto found =
                std::find_if(c.refused.begin(), c.refused.end(),
                             [&](const auto& begin) { return Begins(call, begin.first); });
            return found != c.refused.end() ? found->second : 0;
        });
        ExpectReported(kGoesOn);
        EXPECT_EQ(BytesOf("file"), kPlain);
        EXPECT_EQ(ModeOf("file"), c.after) << (c.refused.empty() ? "" : c.refused.back().first)
                                           << " with " << std::oct << c.before;
    }
}

constexpr char kList[] = "system.posix_acl_access";
// The owner, one more user and the mask have rw; the group and others have nothing.
constexpr std::string_view kAccess =
    "\2\0\0\0"
    "\1\0\6\0\xFF\xFF\xFF\xFF"
    "\2\0\6\0\x39\x30\0\0"
    "\4\0\0\0\xFF\xFF\xFF\xFF"
    "\x10\0\6\0\xFF\xFF\xFF\xFF"
    "\x20\0\0\0\xFF\xFF\xFF\xFF"sv;

// If the list can't be set, the group's bits in the mode would apply to the group itself.
TEST_F(OrvaStringsSystemCalls, SetTheAccessListBeforeTheModeOrNarrowThat) {
    for (const bool isRefused : {false, true}) {
        MakeFiles(m_stored);
        if (setxattr("file", kList, kAccess.data(), kAccess.size(), 0) != 0) {
            GTEST_SKIP() << "the file system has no access lists";
        }
        ASSERT_EQ(ModeOf("file"), 0660U);
        Run({"reveal", "--in-place", "file"}, [&](const std::string& call) {
            return isRefused && Begins(call, "fsetxattr ") ? EIO : 0;
        });
        ExpectReported(kGoesOn);
        const auto set = std::find(m_calls.begin(), m_calls.end(),
                                   "fsetxattr file.A1A2A3 system.posix_acl_access");
        ASSERT_NE(set, m_calls.end());
        EXPECT_EQ(*(set + 1), isRefused ? "fchmod file.A1A2A3 600" : "fchmod file.A1A2A3 660");
        EXPECT_EQ(getxattr("file", kList, nullptr, 0),
                  isRefused ? -1 : static_cast<ssize_t>(kAccess.size()));
    }
}

// A folder may give its new files a list.
TEST_F(OrvaStringsSystemCalls, ReplaceTheAccessListOfTheFolder) {
    for (const bool hasList : {true, false}) {
        MakeFiles(m_stored);
        if (hasList && setxattr("file", kList, kAccess.data(), kAccess.size(), 0) != 0) {
            GTEST_SKIP() << "the file system has no access lists";
        }
        // Gives the other user read access only.
        std::string inherited(kAccess);
        inherited[14] = 4;
        ASSERT_EQ(setxattr(".", "system.posix_acl_default", inherited.data(), inherited.size(), 0),
                  0);
        Run({"reveal", "--in-place", "file"});
        char list[64];
        const ssize_t size = getxattr("file", kList, list, sizeof list);
        if (hasList) {
            EXPECT_EQ(std::string(list, size < 0 ? 0 : static_cast<std::size_t>(size)), kAccess);
        } else {
            EXPECT_EQ(size, -1);
        }
        EXPECT_EQ(removexattr(".", "system.posix_acl_default"), 0);
    }
}

// The group is kept even without the owner. Only root can give files away; other users test with
// their own files.
TEST_F(OrvaStringsSystemCalls, KeepOwnerAndGroup) {
    const uid_t owner = geteuid() == 0 ? 12345 : geteuid();
    gid_t group = geteuid() == 0 ? 12346 : getegid();
    if (geteuid() != 0) {
        gid_t groups[100];
        const int count = getgroups(100, groups);
        group = count > 0 ? groups[count - 1] : group;
    }
    for (const bool isOwnerKept : {true, false}) {
        MakeFiles(m_stored);
        ASSERT_EQ(chown("file", owner, group), 0);
        Run({"reveal", "--in-place", "file"}, [&](const std::string& call) {
            return !isOwnerKept && call == "fchown file.A1A2A3 owner" ? EPERM : 0;
        });
        ExpectReported(kGoesOn);
        struct stat status = {};
        ASSERT_EQ(stat("file", &status), 0);
        EXPECT_EQ(status.st_uid, isOwnerKept ? owner : geteuid());
        EXPECT_EQ(status.st_gid, group);
    }
}

}  // namespace
