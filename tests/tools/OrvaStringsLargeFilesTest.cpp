// Large files: a command's memory is in proportion to the file, and so is its time.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <ostream>
#include <streambuf>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "api/PlaintextCache.h"
#include "strings/LocalizedStrings.h"
#include "support/TemporaryFolder.h"
#include "tests/support/FailingAllocation.h"
#include "tools/orva-strings/Tool.h"
#include "tools/orva-strings/system/Files.h"

namespace {

// A command's output, of which only this is kept.
class Digest : public std::streambuf {
public:
    std::size_t writes = 0;
    std::size_t bytes = 0;
    std::string first;  // what was written first and last, up to 1 KiB of each
    std::string last;

protected:
    std::streamsize xsputn(const char* text, std::streamsize size) override {
        last.assign(text, std::min(static_cast<std::size_t>(size), std::size_t{1024}));
        if (writes++ == 0) {
            first = last;
        }
        bytes += static_cast<std::size_t>(size);
        return size;
    }
    int_type overflow(int_type c) override {
        const char byte = traits_type::to_char_type(c);
        xsputn(&byte, 1);
        return c;
    }
};

// Sections of entries of about 60 bytes a line. One of `share` keys begins with IDE.
std::string Entries(std::size_t size, std::size_t sections, unsigned share) {
    std::string file;
    std::uint32_t state = 1;
    for (std::size_t section = 1; section <= sections; ++section) {
        file += "QVLANG=language " + std::to_string(section) + "\n";
        for (std::size_t number = 0; file.size() < size / sections * section; ++number) {
            state = state * 1'664'525U + 1'013'904'223U;
            file += (state >> 16U) % share == 0 ? "IDE_" : "MENU_";
            file += std::to_string(number) + "_ENTRY=\"";
            file.append(10 + (state >> 24U) % 60, 'x');
            file += "\"\n";
        }
    }
    return file;
}

class OrvaStringsLargeFiles : public ::testing::Test {
protected:
    void SetUp() override {
        m_folder.Write("key", std::string(64, '1') + "\n");
        m_folder.Write("other.key", std::string(64, '2') + "\n");
    }
    void TearDown() override {
        gMapLocalizedStrings.Clear();
        gMapDecodedStrings.Clear();
    }

    std::string Path(const std::string& name) const { return m_folder.Path() / name; }

    int Run(const std::vector<std::string>& arguments) {
        m_out = {};
        m_err = {};
        std::ostream out(&m_out);
        std::ostream err(&m_err);
        return RunTool(
            arguments, [] { return std::string(); }, out, err);
    }

    TemporaryFolder m_folder;
    Digest m_out;
    Digest m_err;
};

TEST_F(OrvaStringsLargeFiles, OfMegabytesTakeThreeTimesTheirSizeAtMost) {
    // A string that grows to it has little room to spare.
    constexpr std::size_t kSize = (std::size_t{8} << 20U) - 4096;
    m_folder.Write("readable", Entries(kSize, 4, 10));
    ASSERT_EQ(Run({"protect", "-o", Path("protected"), Path("readable")}), 0);
    const std::string key = Path("key");
    const std::vector<std::vector<std::string>> commands = {
        {"protect", "--key-file", key, Path("readable")},
        {"protect", "-o", Path("out"), Path("readable")},
        {"rekey", "--from", Path("development.key"), "--to", key, Path("protected")},
        {"reveal", Path("protected")},
        {"sections", Path("protected")},
        {"sections", "--format", "json", Path("protected")},
        {"show", Path("protected")},
        {"show", "--all-languages", Path("protected")},
        {"show", "--all-languages", "--format", "json", "--reveal", Path("protected")},
        {"protect", "--in-place", Path("readable")},
    };
    m_folder.Write("development.key", ReadFile(DEVELOPMENT_KEY));
    for (const auto& command : commands) {
        SCOPED_TRACE(::testing::PrintToString(command));
        const std::size_t size = ReadFile(command.back()).size();
        const AllocationPeak peak;
        EXPECT_EQ(Run(command), 0) << m_err.last;
        EXPECT_GT(peak.Bytes(), size) << "the file was not read";
        EXPECT_LE(peak.Bytes(), 3 * size);
    }
}

// The same keys in each of 30 languages, without a finding.
std::string Translations(std::size_t keys) {
    std::string file;
    for (int language = 0; language < 30; ++language) {
        file += "QVLANG=language " + std::to_string(language) + '\n';
        for (std::size_t key = 0; key < keys; ++key) {
            file += "MENU_" + std::to_string(key) + "_ENTRY=\"Text " + std::to_string(language) +
                    " of %d and {name}, with ümlauts\"\n";
        }
    }
    return file;
}

TEST_F(OrvaStringsLargeFiles, OfMegabytesAreCheckedInThreeTimesTheirSizeAtMost) {
    const std::string file = Translations(2000);
    m_folder.Write("file", file);
    for (const char* const profile : {"--fail-on=warning", "--shipped"}) {
        const AllocationPeak peak;
        EXPECT_EQ(Run({"check", profile, Path("file")}), 0);
        EXPECT_EQ(m_out.first, "no findings in 1 file");
        EXPECT_GT(peak.Bytes(), file.size()) << "the file was not read";
        EXPECT_LE(peak.Bytes(), 3 * file.size());
    }
}

// Each key is kept with its text and its place, and each constant is longer than its entry.
TEST_F(OrvaStringsLargeFiles, OfMegabytesBecomeConstantsInSixteenTimesTheirSizeAtMost) {
    const std::string file = Entries(std::size_t{1} << 20U, 1, 10);
    m_folder.Write("file", file);
    for (const char* const language : {"c", "c++", "swift"}) {
        SCOPED_TRACE(language);
        std::filesystem::remove(Path("out"));
        const AllocationPeak peak;
        EXPECT_EQ(Run({"keys", "--language", language, "-o", Path("out"), Path("file")}), 0);
        EXPECT_GT(peak.Bytes(), file.size()) << "the file was not read";
        EXPECT_LE(peak.Bytes(), 16 * file.size());
    }
}

TEST_F(OrvaStringsLargeFiles, OfMegabytesAreComparedWithSourcesInSixteenTimesTheirSizeAtMost) {
    const std::string file = Entries(std::size_t{1} << 20U, 1, 10);
    m_folder.Write("file", file);
    // Names of constants, and literals.
    std::string source;
    for (std::size_t i = 0; i < 50'000; ++i) {
        const std::string number = std::to_string(i);
        source += "f(MENU_" + number + "_ENTRY, \"IDE_" + number + "_ENTRY\");\n";
    }
    m_folder.Write("a.c", source);
    const AllocationPeak peak;
    EXPECT_EQ(Run({"usage", "--source", Path("a.c"), "--keep", "*", Path("file")}), 0);
    EXPECT_EQ(m_out.first, "no findings in 2 files");
    EXPECT_GT(peak.Bytes(), file.size()) << "the file was not read";
    EXPECT_LE(peak.Bytes(), 16 * file.size());
}

TEST_F(OrvaStringsLargeFiles, OfMegabytesAreExportedInThreeTimesTheirSizeAtMost) {
    const std::string file = Translations(2000);
    m_folder.Write("file", file);
    std::vector<std::string> command = {"export", "--all", "-o", Path("xliff"), Path("file")};
    for (int language = 0; language < 30; ++language) {
        const std::string number = std::to_string(language);
        command.insert(command.end(), {"--code", "language " + number + "=aa-" + number});
    }
    const AllocationPeak peak;
    EXPECT_EQ(Run(command), 0);
    EXPECT_EQ(m_err.last, Path("xliff/aa-29.xlf") + ": wrote 2000 entries\n");
    EXPECT_EQ(m_err.writes, 29U);
    EXPECT_GT(peak.Bytes(), file.size()) << "the file was not read";
    EXPECT_LE(peak.Bytes(), 3 * file.size());
}

// Time that grows with the square of the findings would exceed the time limit here and below.
TEST_F(OrvaStringsLargeFiles, OfMegabytesAreCheckedInTimeInProportionToTheirFindings) {
    constexpr std::size_t kFindings = 20'000;
    const auto number = [](std::size_t i) { return std::to_string(i); };
    const std::vector<std::pair<const char*, std::function<std::string(std::size_t)>>> lines = {
        {"short-key", [](std::size_t) { return "OK=x"; }},
        {"duplicate-entry", [](std::size_t) { return "MENU=x"; }},
        {"duplicate-key", [&](std::size_t i) { return "MENU=" + number(i); }},
        {"key-case",  // one key in so many spellings
         [](std::size_t i) {
             std::string key = "menumenumenumenumenu=x";
             for (std::size_t bit = 0; bit < 20; ++bit) {
                 key[bit] =
                     static_cast<char>((i >> bit & 1U) != 0 ? key[bit] - 'a' + 'A' : key[bit]);
             }
             return key;
         }},
        {"repeated-section", [](std::size_t) { return "QVLANG=en"; }},
        {"near-header", [&](std::size_t i) { return " QVLANG=" + number(i); }},
        {"unused-directive", [](std::size_t) { return "# orva: disable-next-line stale"; }},
        {"missing-key",
         [&](std::size_t i) {
             return i + 1 == kFindings ? "QVLANG=de" : "KEY_" + number(i) + "=x";
         }},
        {"extra-key",
         [&](std::size_t i) { return i == 0 ? "QVLANG=de" : "KEY_" + number(i) + "=x"; }},
    };
    for (const auto& [rule, line] : lines) {
        std::string file = "QVLANG=en\nMENU=x\n";
        for (std::size_t i = 0; i < kFindings; ++i) {
            file += line(i) + '\n';
        }
        m_folder.Write("file", file);
        EXPECT_LT(Run({"check", "--base", Path("file"), Path("file")}), 2) << m_err.last;
        EXPECT_GT(m_out.bytes, 50 * kFindings) << rule;
    }
}

TEST_F(OrvaStringsLargeFiles, OfMegabytesInOneLineAreCheckedInTimeInProportion) {
    constexpr std::size_t kParts = 50'000;
    for (const char* const part : {"{", "{a,", "{a}", "%", "%(", "%1$s", "%s", "\"", "\\t", "%*",
                                   "\xFF", "\r", "orva: ", "="}) {
        std::string text;
        for (std::size_t i = 0; i < kParts; ++i) {
            text += part;
        }
        m_folder.Write("file", "QVLANG=en\nMENU=\"" + text + "\"\nQVLANG=de\nMENU=\"x" + text +
                                   "\"\n# " + text + '\n');
        EXPECT_LT(Run({"check", "--shipped", Path("file")}), 2) << m_err.last;
    }
}

// XLIFF for each language but the first, with a new text for each key.
std::string NewTranslations(std::size_t keys) {
    std::string file = "<xliff version=\"1.2\">\n";
    for (int language = 1; language < 30; ++language) {
        const std::string number = std::to_string(language);
        file += "<file source-language=\"aa-0\" target-language=\"aa-" + number + "\"><body>\n";
        for (std::size_t key = 0; key < keys; ++key) {
            file += "<trans-unit id=\"MENU_" + std::to_string(key) +
                    "_ENTRY\" xml:space=\"preserve\">\n<source>Text 0 of %d and {name}, with "
                    "ümlauts</source>\n<target>New text " +
                    number + " of %d and {name}, with ümlauts</target>\n</trans-unit>\n";
        }
        file += "</body></file>\n";
    }
    return file + "</xliff>\n";
}

TEST_F(OrvaStringsLargeFiles, OfMegabytesAreImportedInSixTimesTheirSizeAtMost) {
    constexpr std::size_t kKeys = 2000;
    const std::string file = Translations(kKeys);
    m_folder.Write("all.xlf", NewTranslations(kKeys));
    std::vector<std::string> command = {"import", "--create", Path("file"), Path("all.xlf")};
    for (int language = 0; language < 30; ++language) {
        const std::string number = std::to_string(language);
        command.insert(command.end(), {"--code", "language " + number + "=aa-" + number});
    }
    // All texts change, or all entries and sections but the first are new.
    const std::pair<std::string, std::string> cases[] = {
        {file, ": changed 58000 entries\n"},
        {file.substr(0, file.find("QVLANG=language 1\n")), ": changed 0 entries, added 58000\n"},
    };
    for (const auto& [bytes, said] : cases) {
        m_folder.Write("file", bytes);
        const AllocationPeak peak;
        EXPECT_EQ(Run(command), 0) << m_err.last;
        EXPECT_EQ(m_err.last, Path("file") + said);
        EXPECT_LE(peak.Bytes(), 6 * ReadFile(Path("file")).size());
    }
}

// Documents of 10 MB that do harm with little: many parts for two languages in turn, and many
// units that no section knows.
TEST_F(OrvaStringsLargeFiles, OfManyPartsAreImportedInTimeInProportion) {
    std::string file = "QVLANG=English\n";
    for (int key = 0; key < 10'000; ++key) {
        file += "KEY_" + std::to_string(key) + "=x\n";
    }
    m_folder.Write("file", file + "QVLANG=Deutsch\nQVLANG=French\n");
    std::string parts = "<xliff version=\"1.2\">";
    for (const char* language = "de"; parts.size() < 10'000'000;
         language = language[0] == 'd' ? "fr" : "de") {
        parts += "<file source-language=\"en\" target-language=\"" + std::string(language) +
                 "\"><body/></file>";
    }
    m_folder.Write("parts.xlf", parts + "</xliff>");
    std::string units =
        "<xliff version=\"1.2\"><file source-language=\"en\" target-language=\"de\"><body>";
    while (units.size() < 10'000'000) {
        units += "<trans-unit id=\"a\"><target>x</target></trans-unit>\n";
    }
    m_folder.Write("units.xlf", units + "</body></file></xliff>");
    EXPECT_EQ(Run({"import", "--code", "English=en", "--code", "Deutsch=de", "--code", "French=fr",
                   Path("file"), Path("parts.xlf"), Path("units.xlf")}),
              0);
    EXPECT_EQ(m_err.last, Path("file") + ": changed 0 entries\n");
}

// The file with one byte replaced by others wherever it is.
std::string With(char byte, const std::string& others, const std::string& file) {
    std::string result;
    for (const char c : file) {
        result += c == byte ? others : std::string(1, c);
    }
    return result;
}

TEST_F(OrvaStringsLargeFiles, OfMegabytesAreMendedInThreeTimesTheirSize) {
    // One more byte in each line leaves little room to spare.
    constexpr std::size_t kSize = (std::size_t{2} << 20U) - (std::size_t{40} << 10U);
    const std::string sections = Entries(kSize, 30, 10);
    const std::string section = Entries(kSize, 1, 10);
    const std::string files[] = {
        "\xEF\xBB\xBF" + sections, With('\n', "\n ", section),  // something to mend in every line
        With('\n', "\r", section),                              // and at every end
        section + section.substr(section.find('\n') + 1),       // each entry twice
    };
    for (const std::string& file : files) {
        for (const char* const option : {"--check", "--diff", ""}) {
            SCOPED_TRACE(option);
            m_folder.Write("broken", file);
            std::vector<std::string> command = {"fix", Path("broken")};
            if (*option != '\0') {
                command.emplace_back(option);
            }
            const AllocationPeak peak;
            EXPECT_EQ(Run(command), *option != '\0' ? 1 : 0) << m_err.last;
            EXPECT_GT(peak.Bytes(), file.size()) << "the file was not read";
            EXPECT_LE(peak.Bytes(), 3 * file.size());
        }
    }
}

TEST_F(OrvaStringsLargeFiles, OfMegabytesMayHaveSomethingToMendInEveryLine) {
    constexpr int kLines = 20'000;
    const auto numbered = [](int i) { return std::to_string(i); };
    const struct {
        const char* what;
        std::function<std::string(int)> line;
        const char* said;
    } cases[] = {
        {"one entry", [](int) { return "ABCD=1\n"; }, ": removed 19999 duplicates\n"},
        {"one key", [&](int i) { return " ABCD=" + numbered(i) + "\n"; }, ": mended 20000 lines\n"},
        {"keys", [&](int i) { return " KEY_" + numbered(i) + "=1\n"; }, ": mended 20000 lines\n"},
        {"headers", [&](int i) { return " QVLANG=" + numbered(i) + "\n"; },
         ": mended 20000 lines\n"},
        {"headers and marks", [&](int i) { return "\xEF\xBB\xBF QVLANG=" + numbered(i) + "\n"; },
         ": mended 20000 lines\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        std::string file = "QVLANG=en\n";
        for (int i = 0; i < kLines; ++i) {
            file += c.line(i);
        }
        m_folder.Write("file", file);
        EXPECT_EQ(Run({"fix", "--diff", Path("file")}), 1);
        EXPECT_GT(m_out.bytes, file.size());
        EXPECT_EQ(Run({"fix", Path("file")}), 0);
        EXPECT_EQ(m_err.last, Path("file") + c.said);
        EXPECT_EQ(Run({"fix", "--check", Path("file")}), 0);
    }
}

TEST_F(OrvaStringsLargeFiles, MayHaveAFindingInEveryHundredBytes) {
    constexpr std::size_t kFindings = 200'000;
    const struct {
        const char* beforeKey;
        const char* inFirstLine;  // what is said of the first finding and of the last
        const char* inLastLine;
    } cases[] = {
        {"\r",
         ":2: error: IDE_A: this entry is not read, because it follows a carriage return, "
         "which does not end a line\n",
         ":2: error: IDE_A: this entry is not read, because it follows a carriage return, which "
         "does not end a line\n"},
        {"\n//",
         ":3: warning: IDE_A: this looks like a protected entry but is not one; its text "
         "stays readable\n",
         ":200002: warning: IDE_A: this looks like a protected entry but is not one; its text "
         "stays readable\n"},
    };
    for (const auto& c : cases) {
        std::string file = "QVLANG=en\n";
        for (std::size_t i = 0; i < kFindings; ++i) {
            file += c.beforeKey;
            file += "IDE_A=";
            file.append(100, 'x');
        }
        m_folder.Write("file", file);
        Run({"protect", "--key-file", Path("key"), Path("file")});
        EXPECT_EQ(m_err.writes, kFindings);
        EXPECT_EQ(m_err.first, Path("file") + c.inFirstLine);
        EXPECT_EQ(m_err.last, Path("file") + c.inLastLine);
    }
}

}  // namespace
