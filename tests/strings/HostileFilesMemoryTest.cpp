// The memory that a load of very long lines takes, and what it does without enough of it.
#include <cstring>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <unistd.h>

#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>
#include <gtest/gtest.h>

#include "tests/strings/HostileFiles.h"

namespace {

constexpr std::size_t kTooLongLine = 1024 * kMebi / kPart;
constexpr std::size_t kLongLine = 256 * kMebi / kPart;
constexpr std::size_t kHugeFile = 1024 * kMebi / kPart;

// The most memory that the process has used since the peak was reset.
std::size_t PeakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        std::size_t kibibytes = 0;
        if (word == "VmHWM:" && status >> kibibytes) {
            return kibibytes * 1024;
        }
    }
    return 0;
}

bool IsAllNul(std::string_view text) {
    return text.empty() ||
           (text[0] == '\0' && std::memcmp(text.data(), text.data() + 1, text.size() - 1) == 0);
}

// Loading one long line must peak at a small multiple of its length: the line, twice when it moves to
// a larger buffer, then for an entry the table's copy, and the value without its escapes if it has
// any.
constexpr std::size_t kTimesRead = 2;
constexpr std::size_t kTimesUnescaped = 3;

// While it lives, the process may use this many times the file's size in extra memory, no more.
class BoundedLoad {
public:
    explicit BoundedLoad(std::size_t times, std::size_t line = kLongLine)
        : m_nTimes(times), m_nLine(line) {
        malloc_trim(0);                               // what earlier tests freed
        std::ofstream("/proc/self/clear_refs") << 5;  // resets the peak
        m_nBefore = PeakMemory();
    }

    ~BoundedLoad() {
        const std::size_t peak = PeakMemory() - m_nBefore;
        ::testing::Test::RecordProperty("peak", std::to_string(peak));
        if (kHasSanitizer) {
            return;  // sanitizers keep freed memory
        }
        EXPECT_GT(peak, m_nLine) << "the line was not read as a whole";
        EXPECT_LE(peak, m_nTimes * m_nLine + 64 * kMebi);
    }

    BoundedLoad(const BoundedLoad&) = delete;
    BoundedLoad& operator=(const BoundedLoad&) = delete;

private:
    std::size_t m_nTimes;
    std::size_t m_nLine;
    std::size_t m_nBefore;
};

class HostileFilesMemory : public HostileFiles {
protected:
    // A file of start, a sparse run of this many NUL bytes, and end.
    void WriteSparse(const std::string& start, std::size_t zeros, const std::string& end) const {
        m_bundle.Write("x", start);
        std::filesystem::resize_file(Path("x"), start.size() + zeros);
        std::ofstream(Path("x"), std::ios::app) << end;
    }
};

TEST_F(HostileFilesMemory, AHugeHeaderLoadsInBoundedMemory) {
    WriteSparse("QVLANG=fr\nQVLANG=en", kLongLine, "\nABCD=1\n");
    {
        const BoundedLoad bounded(kTimesRead);
        // A name is compared up to its first NUL.
        EXPECT_EQ(Load("EN"), 2);
    }
    const auto header = KorString::gMapLocalizedStrings.Find("QVLANG");
    ASSERT_TRUE(header);
    EXPECT_EQ(header->value.size(), kLongLine + 2);
    EXPECT_EQ(header->value.substr(0, 2), "en");
    EXPECT_TRUE(IsAllNul(header->value.substr(2)));
    EXPECT_STREQ(ZuGetLocalizedString("QVLANG"), "en");
    EXPECT_STREQ(ZuGetLocalizedString("ABCD"), "1");
}

TEST_F(HostileFilesMemory, AHugeValueLoadsInBoundedMemory) {
    for (const bool isQuoted : {false, true}) {
        const std::string quote = isQuoted ? "\"" : "";
        m_bundle.Write("x", "");
        EXPECT_EQ(Load("en"), 0);  // frees the table of the round before
        WriteSparse("QVLANG=en\nABCD=" + quote, kLongLine, quote + "\nEFGH=1\n");
        {
            const BoundedLoad bounded(kTimesRead);
            EXPECT_EQ(Load("en"), 3);
        }
        const auto entry = KorString::gMapLocalizedStrings.Find("ABCD");
        ASSERT_TRUE(entry);
        EXPECT_EQ(entry->value.size(), kLongLine);
        EXPECT_TRUE(IsAllNul(entry->value));
        EXPECT_STREQ(ZuGetLocalizedString("EFGH"), "1");
    }
}

TEST_F(HostileFilesMemory, AHugeKeyLoadsInBoundedMemory) {
    WriteSparse("QVLANG=en\nABCD", kLongLine, "=1\nEFGH=1\n");
    {
        const BoundedLoad bounded(kTimesRead);
        EXPECT_EQ(Load("en"), 3);
    }
    const auto entry = KorString::gMapLocalizedStrings.begin();
    EXPECT_EQ(entry->key.size(), kLongLine + 4);
    EXPECT_EQ(entry->key.substr(0, 4), "ABCD");
    EXPECT_TRUE(IsAllNul(entry->key.substr(4)));
    EXPECT_EQ(entry->value, "1");
    EXPECT_STREQ(ZuGetLocalizedString("EFGH"), "1");
}

TEST_F(HostileFilesMemory, AHugeValueOfManyLinesLoadsInBoundedMemory) {
    const std::string part = std::string(1022, 'x') + "\\n";
    const std::size_t parts = kLongLine / part.size();
    {
        std::ofstream file(Path("x"));
        file << "QVLANG=en\nABCD=\"";
        for (std::size_t i = 0; i < parts; ++i) {
            file << part;
        }
        file << "\"\n";
    }
    {
        const BoundedLoad bounded(kTimesUnescaped);
        EXPECT_EQ(Load("en"), 2);
    }
    const auto entry = KorString::gMapLocalizedStrings.Find("ABCD");
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->value.size(), parts * (part.size() - 1));
    EXPECT_EQ(entry->value.substr(1020, 5), "xx\nxx");
}

TEST_F(HostileFilesMemory, AHugeLineThatIsNoEntryIsPassedOverInBoundedMemory) {
    for (const char* start : {"", "QVLANG=de\n"}) {
        WriteSparse(start, kLongLine, "\nQVLANG=en\nABCD=1\n");
        {
            const BoundedLoad bounded(kTimesRead);
            EXPECT_EQ(Load("en"), 2);
        }
        EXPECT_EQ(LoadedTable(), (Table{{"QVLANG", "en"}, {"ABCD", "1"}}));
    }
}

TEST_F(HostileFilesMemory, AHugeFileWithoutASectionLeavesTheTableEmpty) {
    WriteSparse("", kHugeFile, "");
    {
        const BoundedLoad bounded(kTimesRead, kHugeFile);
        EXPECT_EQ(Load("en"), 0);
    }
    EXPECT_EQ(LoadedTable(), Table());
    EXPECT_EQ(ZuGetLocalizedString("QVLANG"), nullptr);
}

// While it lives, the address space can grow by this much only.
class AddressSpaceLimit {
public:
    explicit AddressSpaceLimit(std::size_t more) {
        std::size_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        getrlimit(RLIMIT_AS, &m_before);
        rlimit limit = m_before;
        limit.rlim_cur = pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) + more;
        m_isSet = pages != 0 && setrlimit(RLIMIT_AS, &limit) == 0;
    }
    ~AddressSpaceLimit() { setrlimit(RLIMIT_AS, &m_before); }
    AddressSpaceLimit(const AddressSpaceLimit&) = delete;
    AddressSpaceLimit& operator=(const AddressSpaceLimit&) = delete;

    bool IsSet() const { return m_isSet; }

private:
    rlimit m_before = {};
    bool m_isSet = false;
};

TEST_F(HostileFilesMemory, ALineTooLongForMemoryEndsTheFile) {
    if (kHasSanitizer) {
        GTEST_SKIP() << "a sanitizer needs the address space for itself";
    }
    const std::string sections = "QVLANG=en\nABCD=1\n";
    const Table english = {{"QVLANG", "en"}, {"ABCD", "1"}};
    const struct {
        std::string start;
        std::string end;
        const char* language;
        Table table;
    } cases[] = {
        {"", "\n" + sections, "en", {}},
        {"QVLANG=", "\n" + sections, "en", {}},
        {sections + "EFGH=\"", "\"\nIJKL=2\n", "en", english},
        {sections, "\nQVLANG=fr\nABCD=2\n", "fr", english},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE("start " + ::testing::PrintToString(c.start));
        WriteSparse(c.start, kTooLongLine, c.end);
        int entries = -1;
        {
            const AddressSpaceLimit limit(kTooLongLine / 2);
            ASSERT_TRUE(limit.IsSet());
            entries = Load(c.language);
        }
        EXPECT_EQ(entries, static_cast<int>(c.table.size()));
        EXPECT_EQ(LoadedTable(), c.table);
    }
}

}  // namespace
