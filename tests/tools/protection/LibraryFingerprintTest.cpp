// `orva-strings key show --library` on files made for these tests. key_files_test.sh and
// parents_test.sh test it on the built libraries.
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"
#include "tools/orva-strings/Tool.h"
#include "tools/orva-strings/system/Files.h"

using namespace std::string_literals;  // for texts that hold NUL bytes

namespace {

const std::string kMarker = "libOrvaLanguage key fingerprint: 0123456789ABCDEF\0"s;
const std::string kOther = "libOrvaLanguage key fingerprint: 0123456789ABCDE0\0"s;
const std::string kOfDevelopmentKey = "libOrvaLanguage key fingerprint: 43AB51767D620902\0"s;

constexpr char kShown[] = "fingerprint: 0123456789ABCDEF\ndevelopment key: no\n";
constexpr char kNone[] =
    ": error: the file holds no key fingerprint, so it is not libOrvaLanguage\n";
constexpr char kSeveral[] = ": error: the file holds fingerprints of different keys\n";

class LibraryFingerprint : public ::testing::Test {
protected:
    int Show(const std::vector<std::string>& options) {
        std::vector<std::string> arguments = {"key", "show"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        std::ostringstream out;
        std::ostringstream err;
        const int status = RunTool(
            arguments, [] { return ""; }, out, err);
        m_out = out.str();
        m_err = err.str();
        return status;
    }

    std::string Path(const std::string& name) const { return m_folder.Path() / name; }

    TemporaryFolder m_folder;
    std::string m_out;
    std::string m_err;
};

TEST_F(LibraryFingerprint, IsThatOfItsOneMarker) {
    const std::string file = Path("library");
    const std::string good[] = {
        kMarker,
        "\x7F"s + "ELF" + std::string(5000, '\0') + kMarker + std::string(5000, '\1'),
        kMarker + kMarker,
        kMarker + "libOrvaLanguage key fingerprint: ",
        "libOrvaLanguage key fingerprint: 0123" + kMarker,
        "libOrvaLanguage key fingerprint: \0"s + kMarker,
        "liblibOrvaLanguage key fingerprint: " + kMarker,
    };
    for (const std::string& bytes : good) {
        m_folder.Write("library", bytes);
        EXPECT_EQ(Show({"--library", file}), 0) << bytes;
        EXPECT_EQ(m_out, kShown) << bytes;
        EXPECT_EQ(m_err, "") << bytes;
    }
    m_folder.Write("library", kOfDevelopmentKey);
    EXPECT_EQ(Show({"--library", file}), 0);
    EXPECT_EQ(m_out, "fingerprint: 43AB51767D620902\ndevelopment key: yes\n");
}

TEST_F(LibraryFingerprint, IsMissingOrAmbiguous) {
    const std::string file = Path("library");
    const struct {
        std::string bytes;
        const char* error;
    } bad[] = {
        {"", kNone},
        {"QVLANG=en\n", kNone},
        {kMarker.substr(1), kNone},
        {kMarker.substr(0, kMarker.size() - 1), kNone},
        {kMarker.substr(0, kMarker.size() - 1) + "0\0"s, kNone},
        {"libOrvaLanguage key fingerprint: 0123456789abcdef\0"s, kNone},
        {"libOrvaLanguage key fingerprint: 0123456789ABCDEG\0"s, kNone},
        {"libOrvaLanguage key fingerprint: 0123456789ABCDE\0"s, kNone},
        {"libOrvaLanguage key fingerprint: /123456789ABCDEF\0"s, kNone},
        {"libOrvaLanguage key fingerprint: :123456789ABCDEF\0"s, kNone},
        {"libOrvaLanguage key fingerprint: @123456789ABCDEF\0"s, kNone},
        {kMarker + kOther, kSeveral},
        {kMarker + kOther + kMarker + kOfDevelopmentKey, kSeveral},
    };
    for (const auto& c : bad) {
        m_folder.Write("library", c.bytes);
        EXPECT_EQ(Show({"--library", file}), 1) << c.bytes;
        EXPECT_EQ(m_out, "") << c.bytes;
        EXPECT_EQ(m_err, file + c.error) << c.bytes;
    }
}

// A file is read in pieces, and a marker may span two of them.
TEST_F(LibraryFingerprint, IsFoundAnywhereInALargeFile) {
    const std::string file = Path("library");
    constexpr std::size_t kPiece = 65536;
    for (const std::size_t piece : {1U, 2U}) {
        for (std::size_t before = piece * kPiece - kMarker.size(); before <= piece * kPiece;
             ++before) {
            m_folder.Write("library",
                           'x' + std::string(before - 1, 'l') + kMarker + std::string(100, '\0'));
            EXPECT_EQ(Show({"--library", file}), 0) << before;
            EXPECT_EQ(m_out, kShown) << before;
        }
    }
    m_folder.Write("library", kMarker + std::string(100 * kPiece, '\0') + kOther);
    EXPECT_EQ(Show({"--library", file}), 1);
    EXPECT_EQ(m_err, file + kSeveral);
}

TEST_F(LibraryFingerprint, NeedsNoMoreMemoryThanAPiece) {
    m_folder.Write("large", std::string(5000000, 'x'));
    std::size_t sum = 0;
    ReadFileInPieces(Path("large"), [&](std::string_view piece) {
        EXPECT_LE(piece.size(), 65536U);
        sum += piece.size();
    });
    EXPECT_EQ(sum, 5000000U);
}

TEST_F(LibraryFingerprint, NeedsOneReadableFile) {
    const std::string missing = Path("missing");
    EXPECT_EQ(Show({"--library", missing}), 2);
    EXPECT_EQ(m_err, "orva-strings: error: " + missing + ": No such file or directory\n");
    EXPECT_EQ(Show({"--library", m_folder.Path()}), 2);
    EXPECT_EQ(m_err, "orva-strings: error: " + m_folder.Path().string() + ": Is a directory\n");
    m_folder.Write("library", kMarker);
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{"--library", ""},
          {"--library="},
          {"--library"},
          {"--library", Path("library"), "--key-file", Path("library")}}) {
        EXPECT_EQ(Show(options), 2) << ::testing::PrintToString(options);
        EXPECT_EQ(m_out, "") << ::testing::PrintToString(options);
        EXPECT_NE(m_err, "") << ::testing::PrintToString(options);
    }
    m_folder.Write("[x]", kMarker);
    std::filesystem::current_path(m_folder.Path());
    EXPECT_EQ(Show({"--library", "[x]"}), 0);
    EXPECT_EQ(m_out, kShown);
}

}  // namespace
