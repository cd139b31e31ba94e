// Once a command has returned, no memory of the process holds a key or anything derived from one:
// static objects, the heap including freed blocks, the stack. No file but the key file holds one.
//
// Texts may stay: the command prints them or reads them from a readable file, and ends.
#include <array>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <ostream>
#include <sched.h>
#include <set>
#include <streambuf>
#include <string>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "api/PlaintextCache.h"
#include "support/TemporaryFolder.h"
#include "tests/support/FailingAllocation.h"
#include "tests/support/ProcessMemory.h"
#include "tests/support/Sanitizers.h"
#include "tests/support/Secrets.h"
#include "tests/support/StoredForm.h"
#include "tools/orva-strings/Tool.h"
#include "tools/orva-strings/protection/MasterKey.h"
#include "tools/orva-strings/protection/ProtectedText.h"
#include "tools/orva-strings/system/Files.h"

using namespace std::string_literals;
namespace fs = std::filesystem;

namespace {

using Hits = MemorySearch::Hits;

// Longer than a string object holds inline, and than the pieces in which texts are encrypted.
const char kText[] =
    "a text that is long enough to take several of the blocks in which it is encrypted";

// Key material without a pattern, different for each number.
Bytes Material(unsigned number) {
    Bytes material(32);
    std::uint32_t state = number;
    for (std::uint8_t& byte : material) {
        state = state * 1'664'525U + 1'013'904'223U;
        byte = static_cast<std::uint8_t>(state >> 24U);
    }
    return material;
}

// What must not be found of a key: what decoding and encoding work with, and the file's digits.
MemorySearch::Secrets SecretsOfKeyFile(const Bytes& material) {
    MemorySearch::Secrets secrets = SecretsOf(material, "");
    std::string digits = ToHex(material);
    secrets.emplace_back("the digits", Bytes(digits.begin(), digits.end()));
    for (char& digit : digits) {
        digit = static_cast<char>(std::toupper(static_cast<unsigned char>(digit)));
    }
    secrets.emplace_back("the upper-case digits", Bytes(digits.begin(), digits.end()));
    return secrets;
}

std::string File(const std::string& value) {
    return "QVLANG=en\nMENU_OPEN=\"Open\"\nIDE_TITLE=\"" + value + "\"\n";
}

// A command's output. Standard output's buffer would keep a key written there until the process
// ends. This one keeps each byte masked, as the search does.
class MaskedBuffer : public std::streambuf {
public:
    // Calls atFirst before the first byte.
    explicit MaskedBuffer(std::function<void()> atFirst) : m_atFirst(std::move(atFirst)) {}

    std::string Text() const {
        std::string text;
        for (std::size_t i = 0; i < m_size; ++i) {
            text += static_cast<char>(m_bytes[i] ^ kMask);
        }
        return text;
    }

protected:
    int_type overflow(int_type c) override {
        if (m_size == 0) {
            m_atFirst();
        }
        m_bytes.at(m_size++) = static_cast<char>(traits_type::to_char_type(c) ^ kMask);
        return c;
    }

private:
    static constexpr char kMask = 0x5A;
    std::function<void()> m_atFirst;
    std::array<char, 4096> m_bytes;
    std::size_t m_size = 0;
};

class OrvaStringsMemory : public ::testing::Test {
protected:
    void SetUp() override {
        if (kHasSanitizer) {
            GTEST_SKIP() << "a sanitizer's shadow of the memory is too large to search";
        }
        gMapDecodedStrings.Clear();  // an earlier test may have shown protected texts
        fs::create_directory(Path("tmp"));
        setenv("TMPDIR", Path("tmp").c_str(), 1);
        m_search.LookFor([this] {
            const Bytes first = Material(1);
            const Bytes second = Material(2);
            m_folder.Write("first.key", ToHex(first) + "\n");
            m_folder.Write("second.key", ToHex(second) + "\r\n");
            m_folder.Write("readable", File(kText));
            m_folder.Write("first", File(Stored(kText, first)));
            m_folder.Write("second", File(Stored(kText, second)));
            m_folder.Write("built-in", File(Stored(kText, DevelopmentKey())));
            m_folder.Write("two", File(Stored(kText, first)) + "QVLANG=de\n");
            m_folder.Write("bad", File(std::string(96, '0')));
            m_folder.Write("long.key", ToHex(first) + ToHex(second) + "\n");
            m_folder.Write("wrong.key", ToHex(first).replace(63, 1, "x"));
            m_folder.Write(
                "de.xlf",
                "<xliff version=\"1.2\"><file source-language=\"en\" "
                "target-language=\"de\"><body><trans-unit id=\"IDE_TITLE\"><source>" +
                    std::string(kText) +
                    "</source><target>Titel</target></trans-unit></body></file></xliff>");
            MemorySearch::Secrets secrets = SecretsOfKeyFile(DevelopmentKey());
            for (const Bytes& material : {first, second}) {
                for (const auto& secret : SecretsOfKeyFile(material)) {
                    secrets.push_back(secret);
                }
            }
            return secrets;
        });
        ASSERT_EQ(m_search.Found(), Hits()) << "before any command";
    }

    void TearDown() override { unsetenv("TMPDIR"); }

    // Runs a command, with a file as its standard input. Returns its exit status.
    int Run(const std::vector<std::string>& arguments, const std::string& input = "/dev/null") {
        const int file = open(input.c_str(), O_RDONLY | O_CLOEXEC);
        dup2(file, STDIN_FILENO);
        close(file);
        MaskedBuffer out([this] { m_atOutput = m_search.Found(); });
        MaskedBuffer err([] {});
        std::ostream outStream(&out);
        std::ostream errStream(&err);
        const int status = RunTool(arguments, ReadStandardInput, outStream, errStream);
        m_out = out;
        return status;
    }

    // Runs each command as the first in its process: the loader may save registers at first calls.
    static void InAnotherProcess(const std::function<void()>& run) {
        const pid_t child = fork();
        if (child == 0) {
            run();
            std::fflush(stdout);
            _exit(HasFailure() ? 1 : 0);
        }
        int status = -1;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }

    std::string Path(const std::string& name) const { return m_folder.Path() / name; }

    std::string BytesOf(const std::string& name) const {
        std::ifstream file(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    TemporaryFolder m_folder;
    MemorySearch m_search;
    MaskedBuffer m_out{[] {}};
    Hits m_atOutput;  // what was found when the last command wrote its first byte
};

TEST_F(OrvaStringsMemory, HoldsNoKeyAfterACommand) {
    const std::string first = Path("first.key");
    const std::string second = Path("second.key");
    const struct {
        std::vector<std::string> arguments;
        std::string input;
        int status;
        std::string result;  // the file whose bytes are the output; empty: not checked
    } cases[] = {
        {{"protect", "--key-file", first, Path("readable")}, "", 0, "first"},
        {{"protect", "--key-file", "-", Path("readable")}, first, 0, "first"},
        {{"protect", "--key-file", first, "-"}, Path("readable"), 0, "first"},
        {{"protect", Path("readable")}, "", 0, "built-in"},
        {{"protect", "--key-file", second, Path("first")}, "", 1, ""},
        {{"protect", "--key-file", Path("long.key"), Path("readable")}, "", 2, ""},
        {{"protect", "--key-file", Path("wrong.key"), Path("readable")}, "", 2, ""},
        {{"protect", "--key-file", "-", Path("readable")}, Path("wrong.key"), 2, ""},
        {{"protect", "--key-file", first, Path("missing")}, "", 2, ""},
        {{"reveal", "--key-file", first, Path("first")}, "", 0, "readable"},
        {{"reveal", "--key-file", "-", Path("second")}, second, 0, "readable"},
        {{"reveal", Path("built-in")}, "", 0, "readable"},
        {{"reveal", "--key-file", second, Path("first")}, "", 1, ""},
        {{"reveal", "--key-file", first, Path("bad")}, "", 1, ""},
        {{"reveal", "--lenient", "--key-file", first, Path("bad")}, "", 0, "bad"},
        {{"rekey", "--from", first, "--to", second, Path("first")}, "", 0, "second"},
        {{"rekey", "--from", "-", "--to", second, Path("first")}, first, 0, "second"},
        {{"rekey", "--from", first, "--to", "-", Path("first")}, second, 0, "second"},
        {{"rekey", "--from", first, "--to", second, Path("built-in")}, "", 1, ""},
        {{"rekey", "--from", first, "--to", Path("wrong.key"), Path("first")}, "", 2, ""},
        {{"show", Path("built-in")}, "", 0, ""},
        {{"show", "--reveal", Path("built-in"), "IDE_TITLE"}, "", 0, ""},
        {{"show", "--reveal", Path("first")}, "", 1, ""},
        {{"show", "--reveal", "--key-file", first, Path("first")}, "", 0, ""},
        {{"show", "--all-languages", "--key-file", "-", Path("second")}, second, 0, ""},
        {{"show", "--key-file", first, "--format", "json", Path("second")}, "", 1, ""},
        {{"sections", Path("first")}, "", 0, ""},
        {{"export", "--language", "de", "--code", "en=en", "--code", "de=de", "--reveal",
          "--key-file", first, "-o", "-", Path("two")},
         "",
         0,
         ""},
        {{"fix", "-"}, Path("first"), 0, "first"},
        {{"keys", "--language", "c", Path("built-in")}, "", 0, ""},
        {{"usage", "--source", Path("readable"), Path("built-in")}, "", 0, ""},
        {{"sync", "-"}, Path("first"), 0, "first"},
        {{"stats", Path("built-in")}, "", 0, ""},
        {{"stats", "--key-file", "-", Path("second")}, second, 0, ""},
        {{"report", "--key-file", first, "-o", Path("page"), Path("first")}, "", 0, ""},
        {{"import", "--key-file", first, "--code", "en=en", "--code", "de=de", "--create", "-",
          Path("de.xlf")},
         Path("first"),
         0,
         ""},
        {{"key", "show"}, "", 0, ""},
        {{"key", "show", "--key-file", first}, "", 0, ""},
        {{"key", "show", "--key-file", "-"}, second, 0, ""},
        {{"key", "show", "--key-file", "-"}, Path("long.key"), 2, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.arguments));
        InAnotherProcess([&] {
            EXPECT_EQ(Run(c.arguments, c.input.empty() ? "/dev/null" : c.input), c.status);
            EXPECT_EQ(m_search.Found(), Hits());
            // These still need the key.
            if (c.arguments[0] != "show" && c.arguments[0] != "export") {
                EXPECT_EQ(m_atOutput, Hits());
            }
            if (!c.result.empty()) {
                EXPECT_EQ(m_out.Text(), BytesOf(c.result));
            }
        });
    }
}

TEST_F(OrvaStringsMemory, HoldsNoKeyAfterAFileIsWritten) {
    for (const auto& [option, file] :
         {std::pair{"--output=" + Path("out"), "out"}, std::pair{"--in-place"s, "first"}}) {
        SCOPED_TRACE(option);
        const std::vector<std::string> arguments = {
            "rekey", "--from",     Path("first.key"), "--to", Path("second.key"),
            option,  Path("first")};
        InAnotherProcess([&] {
            EXPECT_EQ(Run(arguments), 0);
            EXPECT_EQ(m_search.Found(), Hits());
        });
        EXPECT_EQ(BytesOf(file), BytesOf("second"));
    }
}

// A growing string moves.
TEST_F(OrvaStringsMemory, HoldsNoKeyThatCameThroughAPipeByteByByte) {
    const std::string pipe = Path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const pid_t writer = fork();
    if (writer == 0) {
        alarm(60);  // ends it if nobody reads
        const int end = open(pipe.c_str(), O_WRONLY | O_CLOEXEC);
        for (const char digit : BytesOf("first.key")) {
            int left = write(end, &digit, 1) == 1 ? 1 : -1;
            while (left > 0 && ioctl(end, FIONREAD, &left) == 0) {
                sched_yield();
            }
        }
        _exit(0);
    }
    const int key = open(Path("first.key").c_str(), O_RDONLY | O_CLOEXEC);
    char digits[8] = {};  // fewer than what the search finds
    ASSERT_EQ(read(key, digits, sizeof digits - 1), sizeof digits - 1);
    close(key);
    {
        const FreedMemoryWatch watch(digits, sizeof digits - 1);
        EXPECT_EQ(Run({"reveal", "--key-file", "-", Path("first")}, pipe), 0);
        EXPECT_FALSE(FreedMemoryWatch::HasSeen());
        EXPECT_GT(FreedMemoryWatch::Blocks(), 0U);
    }
    EXPECT_EQ(m_search.Found(), Hits());
    EXPECT_EQ(m_out.Text(), BytesOf("readable"));
    EXPECT_EQ(waitpid(writer, nullptr, 0), writer);
}

TEST_F(OrvaStringsMemory, HoldsNoKeyThatWasMade) {
    EXPECT_EQ(Run({"key", "new", Path("new.key")}), 0);
    MemorySearch ofFile;
    ofFile.LookFor([this] { return SecretsOfKeyFile(FromHex(BytesOf("new.key"))); });
    EXPECT_EQ(ofFile.Found(), Hits());

    EXPECT_EQ(Run({"key", "new", "-"}), 0);
    MemorySearch ofOutput;
    ofOutput.LookFor([this] { return SecretsOfKeyFile(FromHex(m_out.Text())); });
    EXPECT_EQ(ofOutput.Found(), Hits());
}

#ifdef __x86_64__
// Round keys in registers: whatever saves the registers would put them on the stack.
std::uint8_t gRegisters[16][16];

void SaveVectorRegisters() {
    __asm__ volatile(
        "movdqu %%xmm0, (%0)\n\tmovdqu %%xmm1, 16(%0)\n\tmovdqu %%xmm2, 32(%0)\n\t"
        "movdqu %%xmm3, 48(%0)\n\tmovdqu %%xmm4, 64(%0)\n\tmovdqu %%xmm5, 80(%0)\n\t"
        "movdqu %%xmm6, 96(%0)\n\tmovdqu %%xmm7, 112(%0)\n\tmovdqu %%xmm8, 128(%0)\n\t"
        "movdqu %%xmm9, 144(%0)\n\tmovdqu %%xmm10, 160(%0)\n\tmovdqu %%xmm11, 176(%0)\n\t"
        "movdqu %%xmm12, 192(%0)\n\tmovdqu %%xmm13, 208(%0)\n\tmovdqu %%xmm14, 224(%0)\n\t"
        "movdqu %%xmm15, 240(%0)"
        :
        : "r"(gRegisters)
        : "memory");
}

TEST_F(OrvaStringsMemory, HoldsNoKeyInRegisters) {
    {
        const MasterKey key = MasterKey::FromFile(Path("first.key"));
        const ProtectionKeys keys = key.Derive();
        SaveVectorRegisters();
    }
    EXPECT_EQ(m_search.Found(), Hits()) << "derived";
    std::string stored;
    {
        const ProtectionKeys keys = MasterKey::FromFile(Path("first.key")).Derive();
        stored = EncodeProtectedText(keys, kText);
        SaveVectorRegisters();
    }
    EXPECT_EQ(m_search.Found(), Hits()) << "used to encode";
    for (const std::string& value : {stored, std::string(64, '0')}) {
        {
            const ProtectionKeys keys = MasterKey::FromFile(Path("first.key")).Derive();
            EXPECT_EQ(DecodeProtectedText(keys, value).has_value(), value == stored);
            SaveVectorRegisters();
        }
        EXPECT_EQ(m_search.Found(), Hits()) << "used to decode " << value;
    }
}
#endif

// When the temporary folder's link is made: the names in the folder, and the bytes that the link
// leads to.
struct {
    std::set<std::string> names;
    std::string linked;
} gAtLink;

}  // namespace

// The command makes one, to the copy that the library will load.
extern "C" int symlink(const char* target, const char* path) noexcept {
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(getenv("TMPDIR"))) {
        std::string name = entry.path().lexically_relative(getenv("TMPDIR")).string();
        gAtLink.names.insert(name.erase(0, std::strlen("orva-XXXXXX")));
    }
    std::ifstream file(target, std::ios::binary);
    gAtLink.linked.assign(std::istreambuf_iterator<char>(file), {});
    return symlinkat(target, AT_FDCWD, path);
}

namespace {

TEST_F(OrvaStringsMemory, IsNotInTheFilesOfShow) {
    EXPECT_EQ(Run({"show", "--reveal", Path("built-in")}), 0);
    EXPECT_EQ(m_out.Text(),
              std::string("IDE_TITLE=\"") + kText + "\"\nMENU_OPEN=\"Open\"\nQVLANG=\"en\"\n");
    EXPECT_EQ(gAtLink.names, (std::set<std::string>{"", "/Contents", "/Contents/Resources"}));
    EXPECT_EQ(gAtLink.linked, BytesOf("built-in"));
    EXPECT_TRUE(fs::is_empty(Path("tmp")));
}

TEST_F(OrvaStringsMemory, IsInNoTemporaryFile) {
    const int watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    ASSERT_GE(inotify_add_watch(watch, Path("tmp").c_str(), IN_CREATE | IN_MOVED_TO), 0);
    const std::string first = Path("first.key");
    for (const auto& arguments : std::vector<std::vector<std::string>>{
             {"protect", "--key-file", first, Path("readable")},
             {"protect", "--key-file", first, "-o", Path("out"), Path("readable")},
             {"reveal", "--key-file", first, "--in-place", Path("first")},
             {"rekey", "--from", Path("second.key"), "--to", first, Path("second")},
             {"sections", Path("first")},
             {"key", "new", Path("new.key")},
             {"key", "new", "-"},
             {"key", "show"},
             {"key", "show", "--key-file", first}}) {
        EXPECT_EQ(Run(arguments), 0) << ::testing::PrintToString(arguments);
        char event[4096];
        EXPECT_EQ(read(watch, event, sizeof event), -1) << ::testing::PrintToString(arguments);
        EXPECT_EQ(errno, EAGAIN);
    }
    EXPECT_EQ(Run({"show", Path("built-in")}), 0);
    char event[4096];
    EXPECT_GT(read(watch, event, sizeof event), 0) << "the watch notices a file";
    close(watch);
}

}  // namespace
