// Files made to break a load, and failing reads: the result, table and memory are as the format and
// the header promise.
#include <algorithm>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <grp.h>
#include <malloc.h>
#include <map>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>
#include <gtest/gtest.h>

#include "fuzz/NaiveStrings.h"
#include "support/TemporaryBundle.h"
#include "tests/support/FileFaults.h"
#include "tests/support/PipeWriter.h"
#include "tests/support/ReadFaults.h"

#if defined(__has_feature)  // clang++'s counterpart of g++'s macros
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define WITH_SANITIZER 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define WITH_SANITIZER 1
#endif

namespace {

#ifdef WITH_SANITIZER
constexpr bool kHasSanitizer = true;
#else
constexpr bool kHasSanitizer = false;
#endif

// Sanitizers take about ten times as long, as does libc++, which reads a line byte by byte. Sizes
// are scaled down there.
#ifdef _LIBCPP_VERSION
constexpr std::size_t kPart = 10;
#else
constexpr std::size_t kPart = kHasSanitizer ? 10 : 1;
#endif

constexpr std::size_t kMebi = std::size_t{1} << 20U;
constexpr std::size_t kTooLongLine = 1024 * kMebi / kPart;
constexpr std::size_t kLongLine = 256 * kMebi / kPart;
constexpr std::size_t kHugeFile = 1024 * kMebi / kPart;

using Table = std::map<std::string, std::string>;
using Sizes = std::vector<std::size_t>;

Table LoadedTable() {
    Table table;
    for (const auto& [key, value] : KorString::gMapLocalizedStrings) {
        table.emplace(key, value);
    }
    return table;
}

// Whether the table is exactly this one. Returns a bool because a failed comparison would print
// large tables.
bool TableIs(const Table& expected) {
    const KorStringMap& table = KorString::gMapLocalizedStrings;
    return table.Size() == expected.size() &&
           std::all_of(expected.begin(), expected.end(), [&](const auto& each) {
               // NOLINTNEXTLINE(clang-analyzer-core.CallAndMessage): a guess, through a map
               const auto entry = table.Find(each.first);
               return entry && entry->value == each.second;
           });
}

std::string Repeated(std::string_view text, std::size_t times) {
    std::string repeated;
    repeated.reserve(text.size() * times);
    for (std::size_t i = 0; i < times; ++i) {
        repeated += text;
    }
    return repeated;
}

class HostileFiles : public ::testing::Test {
protected:
    // Each test starts with an empty table.
    HostileFiles() {
        m_bundle.Write("x", "");
        Load("en");
    }

    std::string Path(const std::string& name) const { return m_bundle.Resources() / name; }

    int Load(const char* language, const std::string& name = "x") const {
        return ZuLoadStrings(language, name.c_str(), m_bundle.Get());
    }

    // Writes the file, loads it, and returns whether that gave exactly these entries.
    bool Loads(const std::string& file, const char* language, const Table& expected) const {
        m_bundle.Write("x", file);
        return Load(language) == static_cast<int>(expected.size()) && TableIs(expected);
    }

    // A file of start, a sparse run of this many NUL bytes, and end.
    void WriteSparse(const std::string& start, std::size_t zeros, const std::string& end) const {
        m_bundle.Write("x", start);
        std::filesystem::resize_file(Path("x"), start.size() + zeros);
        std::ofstream(Path("x"), std::ios::app) << end;
    }

    TemporaryBundle m_bundle;
};

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

// Loading one long line must peak at a small multiple of its length. For a line that is no entry:
// the line, and a line function's copy.
constexpr std::size_t kTimesPassedOver = 2;
// For an entry: the line, the copy and the value, then the table's text in place of the copy.
constexpr std::size_t kTimesKept = 3;

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

TEST_F(HostileFiles, AHugeHeaderLoadsInBoundedMemory) {
    WriteSparse("QVLANG=fr\nQVLANG=en", kLongLine, "\nABCD=1\n");
    {
        const BoundedLoad bounded(kTimesKept);
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

TEST_F(HostileFiles, AHugeValueLoadsInBoundedMemory) {
    for (const bool isQuoted : {false, true}) {
        const std::string quote = isQuoted ? "\"" : "";
        WriteSparse("QVLANG=en\nABCD=" + quote, kLongLine, quote + "\nEFGH=1\n");
        {
            const BoundedLoad bounded(kTimesKept);
            EXPECT_EQ(Load("en"), 3);
        }
        const auto entry = KorString::gMapLocalizedStrings.Find("ABCD");
        ASSERT_TRUE(entry);
        EXPECT_EQ(entry->value.size(), kLongLine);
        EXPECT_TRUE(IsAllNul(entry->value));
        EXPECT_STREQ(ZuGetLocalizedString("EFGH"), "1");
    }
}

TEST_F(HostileFiles, AHugeKeyLoadsInBoundedMemory) {
    WriteSparse("QVLANG=en\nABCD", kLongLine, "=1\nEFGH=1\n");
    {
        const BoundedLoad bounded(kTimesKept);
        EXPECT_EQ(Load("en"), 3);
    }
    const auto entry = KorString::gMapLocalizedStrings.begin();
    EXPECT_EQ(entry->key.size(), kLongLine + 4);
    EXPECT_EQ(entry->key.substr(0, 4), "ABCD");
    EXPECT_TRUE(IsAllNul(entry->key.substr(4)));
    EXPECT_EQ(entry->value, "1");
    EXPECT_STREQ(ZuGetLocalizedString("EFGH"), "1");
}

TEST_F(HostileFiles, AHugeValueOfManyLinesLoadsInBoundedMemory) {
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
        const BoundedLoad bounded(kTimesKept);
        EXPECT_EQ(Load("en"), 2);
    }
    const auto entry = KorString::gMapLocalizedStrings.Find("ABCD");
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->value.size(), parts * (part.size() - 1));
    EXPECT_EQ(entry->value.substr(1020, 5), "xx\nxx");
}

TEST_F(HostileFiles, AHugeLineThatIsNoEntryIsPassedOverInBoundedMemory) {
    for (const char* start : {"", "QVLANG=de\n"}) {
        WriteSparse(start, kLongLine, "\nQVLANG=en\nABCD=1\n");
        {
            const BoundedLoad bounded(kTimesPassedOver);
            EXPECT_EQ(Load("en"), 2);
        }
        EXPECT_EQ(LoadedTable(), (Table{{"QVLANG", "en"}, {"ABCD", "1"}}));
    }
}

TEST_F(HostileFiles, AHugeFileWithoutASectionLeavesTheTableEmpty) {
    WriteSparse("", kHugeFile, "");
    {
        const BoundedLoad bounded(kTimesPassedOver, kHugeFile);
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

TEST_F(HostileFiles, ALineThatMemoryDoesNotSufficeForEndsTheFile) {
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

TEST_F(HostileFiles, TenMillionLinesAreReadToTheEnd) {
    const std::size_t lines = 10'000'000 / kPart;
    for (const char* line : {"x\n", "\n", "=\n", "\r\n", "\"\n"}) {
        const std::string many = Repeated(line, lines);
        SCOPED_TRACE(::testing::PrintToString(line));
        EXPECT_TRUE(Loads(many + "QVLANG=en\nABCD=1\n" + many + "EFGH=2", "en",
                          {{"QVLANG", "en"}, {"ABCD", "1"}, {"EFGH", "2"}}));
    }
}

TEST_F(HostileFiles, AMillionSectionsAreSearchedToTheLast) {
    const std::size_t sections = 1'000'000 / kPart;
    std::string file = "QVLANG=first\nABCD=1\n";
    for (std::size_t i = 2; i < sections; ++i) {
        file += "QVLANG=section " + std::to_string(i) + "\n";
    }
    file += "QVLANG=last\nABCD=2\n";
    EXPECT_TRUE(Loads(file, "LAST", {{"QVLANG", "last"}, {"ABCD", "2"}}));
    EXPECT_TRUE(Loads(file, "none of them", {{"QVLANG", "first"}, {"ABCD", "1"}}));
    EXPECT_TRUE(Loads(file, "section 2", {{"QVLANG", "section 2"}}));
}

TEST_F(HostileFiles, OfAMillionEntriesWithOneKeyTheFirstStays) {
    std::string file = "QVLANG=en\n";
    for (std::size_t i = 1; i <= 1'000'000 / kPart; ++i) {
        file += "SAME=" + std::to_string(i) + "\n";
    }
    file += "QVLANG=de\n";
    EXPECT_TRUE(Loads(file, "en", {{"QVLANG", "en"}, {"SAME", "1"}}));
    EXPECT_STREQ(ZuGetLocalizedString("SAME"), "1");
}

TEST_F(HostileFiles, LongNamesAreToldApartByAnyByte) {
    for (const std::size_t length : Sizes{255, 256, 1023, 1024, 4096, 1'000'000}) {
        const std::string name(length, 'n');
        const std::string other = name.substr(1) + 'm';
        const std::string file =
            "QVLANG=first\nABCD=1\nQVLANG=" + name + "\nABCD=2\nQVLANG=" + other + "\nABCD=3\n";
        EXPECT_TRUE(
            Loads(file, std::string(length, 'N').c_str(), {{"QVLANG", name}, {"ABCD", "2"}}));
        EXPECT_TRUE(Loads(file, other.c_str(), {{"QVLANG", other}, {"ABCD", "3"}}));
        for (const std::string& none : {name + 'n', name.substr(1)}) {
            EXPECT_TRUE(Loads(file, none.c_str(), {{"QVLANG", "first"}, {"ABCD", "1"}}));
        }
    }
}

TEST_F(HostileFiles, KeysOfAMegabyteAreToldApartByAnyByte) {
    const std::string key(1'000'000, 'k');
    Table table = {{"QVLANG", "en"}, {key, "all k"}};
    // At the front, at the back, in the middle, and by length alone.
    for (const std::size_t place : Sizes{0, 15, 16, 499'999, 999'983, 999'984, 999'999}) {
        std::string other = key;
        other[place] = 'K';
        table[other] = "K at " + std::to_string(place);
        table[key.substr(0, place + 4)] = "the first " + std::to_string(place);
    }
    std::string file = "QVLANG=en\n";
    for (const auto& [each, value] : table) {
        file.append(each == "QVLANG" ? "" : each + "=" + value + "\n");
    }
    EXPECT_TRUE(Loads(file, "en", table));
    for (const auto& [each, value] : table) {
        EXPECT_STREQ(ZuGetLocalizedString(each.c_str()), value.c_str());
    }
}

TEST_F(HostileFiles, ValuesOfSixteenMegabytesAreWhole) {
    const std::size_t size = 16 * kMebi / kPart;
    const std::string text(size, 'v');
    EXPECT_TRUE(Loads("QVLANG=en\nABCD=" + text + "\n", "en", {{"QVLANG", "en"}, {"ABCD", text}}));
    EXPECT_TRUE(
        Loads("QVLANG=en\nABCD=\"" + text + "\"\n", "en", {{"QVLANG", "en"}, {"ABCD", text}}));
    // Texts made of what the line parser looks for.
    const struct {
        std::string text;
        std::string value;
    } cases[] = {
        {Repeated("\\n", size / 2), std::string(size / 2, '\n')},
        {std::string(size, '\\'), std::string(size, '\\')},
        {std::string(size, '"'), std::string(size, '"')},
        {std::string(size, '='), std::string(size, '=')},
        {std::string(size, '\r'), std::string(size, '\r')},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE("of " + ::testing::PrintToString(c.text.substr(0, 2)));
        EXPECT_TRUE(Loads("QVLANG=en\nABCD=\"" + c.text + "\"\nEFGH=1", "en",
                          {{"QVLANG", "en"}, {"ABCD", c.value}, {"EFGH", "1"}}));
    }
}

TEST_F(HostileFiles, EveryByteAtEveryPlaceIsReadAsTheFormatSays) {
    const std::string file = "QVLANG=en\nKEY1=\"a\\nb\"\r\nKEY1=c\nQVLANG=de\nKEY2=d";
    m_bundle.Write("x", file);
    const int handle = open(Path("x").c_str(), O_WRONLY);
    ASSERT_NE(handle, -1);
    const auto rewrite = [&](const std::string& bytes) {
        return ftruncate(handle, static_cast<off_t>(bytes.size())) == 0 &&
               pwrite(handle, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size());
    };
    for (const std::size_t replaced : Sizes{1, 0}) {  // 0: the byte is inserted
        for (std::size_t place = 0; place < file.size(); ++place) {
            for (int byte = 0; byte < 256; ++byte) {
                std::string bytes = file;
                bytes.replace(place, replaced, 1, static_cast<char>(byte));
                ASSERT_TRUE(rewrite(bytes));
                for (const char* language : {"en", "DE"}) {
                    const Table expected = naive::Table(bytes, language);
                    ASSERT_EQ(Load(language), static_cast<int>(expected.size()))
                        << language << " of " << ::testing::PrintToString(bytes);
                    ASSERT_EQ(LoadedTable(), expected)
                        << language << " of " << ::testing::PrintToString(bytes);
                }
            }
        }
    }
    close(handle);
}

// Two languages in files longer than a stream's buffer, so that a load reads several times.
std::string LongFile(const std::string& mark) {
    std::string file;
    for (const char* language : {"en", "de"}) {
        file += std::string("QVLANG=") + language + "\n";
        for (int i = 0; i < 1000; ++i) {
            file += "KEY_" + std::to_string(i) + "=\"" + mark + " " + language + "\"\n";
        }
    }
    return file;
}

bool HasSection(const std::string& bytes, const std::string& language) {
    const std::vector<std::string> lines = naive::Lines(bytes);
    return std::any_of(lines.begin(), lines.end(), [&](const std::string& line) {
        return naive::IsHeader(line, "QVLANG=", language);
    });
}

// The table of a load that reads these bytes first, and those if it reads the file again for the
// first section.
Table TableOf(const std::string& first, const std::string& again, const std::string& language) {
    return HasSection(first, language) ? naive::Table(first, language) : naive::Table(again, "");
}

std::string UpTo(const std::string& bytes, std::size_t size) {
    return bytes.substr(0, std::min(size, bytes.size()));
}

std::string From(const std::string& bytes, std::size_t place) {
    return bytes.substr(std::min(place, bytes.size()));
}

// What is left of a reading that fails after these bytes.
std::string LeftByAFailure(const std::string& bytes) {
    return bytes.substr(0, bytes.rfind('\n') + 1);
}

// Something that happens to a file while it is read.
struct Event {
    std::function<void()> make;
    // Everything this reading returns, if it has returned this many bytes by then.
    std::function<std::string(std::size_t)> reading;
    std::string next;  // what the next reading returns
    std::size_t failures = 0;
    int error = EIO;
};

class ChangingFiles : public HostileFiles {
protected:
    void SetUp() override {
#ifdef _LIBCPP_VERSION
        GTEST_SKIP() << "libc++ reads through the C library, whose own reads can't be bent";
#endif
    }

    // Loads with the event before the n-th read, for every n.
    void TryAtEveryRead(const std::string& file, std::size_t mostBytes, const Event& event) const {
        for (const char* language : {"en", "DE", "none"}) {
            bool hasHappened = true;
            for (std::size_t n = 1; hasHappened; ++n) {
                SCOPED_TRACE(std::string(language) + ", read " + std::to_string(n));
                m_bundle.Write("x", file);
                std::string first = file;
                std::string again = file;
                hasHappened = false;
                ReadFaults::Plan plan;
                plan.mostBytes = mostBytes;
                plan.failures = event.failures;
                plan.error = event.error;
                plan.turn = n;
                plan.beforeTurn = [&](const ReadFaults::Progress& progress) {
                    hasHappened = true;
                    (progress.isRepeated ? again : first) = event.reading(progress.bytes);
                    if (!progress.isRepeated) {
                        again = event.next;
                    }
                    event.make();
                };
                int entries = 0;
                {
                    const ReadFaults faults(plan);
                    entries = Load(language);
                }
                const Table expected = TableOf(first, again, language);
                ASSERT_EQ(entries, static_cast<int>(expected.size()));
                ASSERT_TRUE(TableIs(expected)) << ::testing::PrintToString(LoadedTable());
                ASSERT_TRUE(n > 1 || hasHappened) << "no read came by here";
            }
        }
    }
};

const std::string kShortFile =
    "NOTE=1\nQVLANG=en\nABCD=\"one\\ntwo\"\nEFGH=2\r\nQVLANG=de\nABCD=eins\nEFGH=zwei";

TEST_F(ChangingFiles, AFileThatShrinksEndsWhereItIsCut) {
    const std::string longFile = LongFile("text");
    const struct {
        std::string file;
        std::size_t mostBytes;
    } cases[] = {{longFile, ReadFaults::kAll}, {kShortFile, 3}};
    for (const auto& c : cases) {
        for (const std::size_t part : Sizes{0, 1, 4, 7, 9}) {
            const std::size_t size = c.file.size() * part / 10;
            SCOPED_TRACE("cut at " + std::to_string(size));
            TryAtEveryRead(c.file, c.mostBytes,
                           {[&] { std::filesystem::resize_file(Path("x"), size); },
                            [&](std::size_t bytes) { return UpTo(c.file, std::max(size, bytes)); },
                            UpTo(c.file, size)});
        }
    }
}

TEST_F(ChangingFiles, AFileThatIsReplacedIsReadAsTheOneThatWasOpened) {
    const std::string files[] = {LongFile("old"), LongFile("another"), "QVLANG=new\nABCD=new\n",
                                 "ABCD=no section\n", ""};
    for (const std::string& next : files) {
        SCOPED_TRACE("by one of " + std::to_string(next.size()) + " bytes");
        TryAtEveryRead(files[0], ReadFaults::kAll,
                       {[&] {
                            m_bundle.Write("y", next);
                            std::filesystem::rename(Path("y"), Path("x"));
                        },
                        [&](std::size_t) { return files[0]; }, next});
    }
}

TEST_F(ChangingFiles, AFileThatIsGoneLeavesWhatWasOpened) {
    const std::string file = LongFile("text");
    TryAtEveryRead(file, ReadFaults::kAll,
                   {[&] { std::filesystem::remove(Path("x")); },
                    [&](std::size_t) { return std::string(file); }, ""});
}

TEST_F(ChangingFiles, AFileThatIsRewrittenInPlaceIsReadAsItsBytesCome) {
    const std::string old = LongFile("old");
    for (const std::string& next : {LongFile("something new"), std::string("QVLANG=new\n")}) {
        SCOPED_TRACE("with " + std::to_string(next.size()) + " bytes");
        TryAtEveryRead(
            old, ReadFaults::kAll,
            {[&] { m_bundle.Write("x", next); },
             [&](std::size_t bytes) { return UpTo(old, bytes) + From(next, bytes); }, next});
    }
}

TEST_F(ChangingFiles, AFailedReadEndsTheFile) {
    const struct {
        std::string file;
        std::size_t mostBytes;
    } cases[] = {{LongFile("text"), ReadFaults::kAll}, {kShortFile, 1}, {kShortFile, 7}};
    for (const auto& c : cases) {
        const auto reading = [&](std::size_t bytes) { return LeftByAFailure(UpTo(c.file, bytes)); };
        // One failure, so that a second reading succeeds; then failures from there on.
        TryAtEveryRead(c.file, c.mostBytes, {[] {}, reading, c.file, 1});
        TryAtEveryRead(c.file, c.mostBytes, {[] {}, reading, "", ReadFaults::kAll});
    }
}

TEST_F(ChangingFiles, AnInterruptedReadIsTakenUpAgain) {
    const std::string longFile = LongFile("text");
    for (const std::string& file : {kShortFile, longFile}) {
        TryAtEveryRead(file, file.size() / 3,
                       {[] {}, [&](std::size_t) { return std::string(file); }, file, 3, EINTR});
    }
}

TEST_F(ChangingFiles, ShortReadsMakeTheSameTable) {
    const std::string longFile = LongFile("text");
    for (const std::string& file : {kShortFile, longFile}) {
        m_bundle.Write("x", file);
        for (const char* language : {"en", "DE", "none"}) {
            for (const std::size_t mostBytes : Sizes{1, 2, 3, 1000}) {
                SCOPED_TRACE(std::string(language) + ", reads of " + std::to_string(mostBytes));
                const Table expected = naive::Table(file, language);
                ReadFaults::Plan plan;
                plan.mostBytes = mostBytes;
                int entries = 0;
                {
                    const ReadFaults faults(plan);
                    entries = Load(language);
                }
                EXPECT_EQ(entries, static_cast<int>(expected.size()));
                EXPECT_TRUE(TableIs(expected));
                // At least to the end of the first section.
                EXPECT_GE(ReadFaults::Calls(), file.rfind("QVLANG=") / mostBytes);
            }
        }
    }
}

TEST_F(HostileFiles, AFailedCloseChangesNothing) {
    m_bundle.Write("x", kShortFile);
    for (const char* language : {"en", "de", "none"}) {
        const Table expected = naive::Table(kShortFile, language);
        for (const int failing : {1, 2}) {
            SCOPED_TRACE(std::string(language) + ", close " + std::to_string(failing));
            const FileFaults faults(0, failing);
            EXPECT_EQ(Load(language), static_cast<int>(expected.size()));
            EXPECT_EQ(LoadedTable(), expected);
            EXPECT_EQ(FileFaults::Calls().back(), "fclose");
        }
    }
}

TEST_F(HostileFiles, APipeLoadsAsAFileDoes) {
    // Longer than a pipe's buffer, so that reading and writing overlap.
    const std::string file = LongFile(std::string(200, 't'));
    const PipeWriter writer(Path("pipe"), [&] { std::ofstream(Path("pipe")) << file; });
    EXPECT_EQ(Load("de", "pipe"), 1001);
    EXPECT_TRUE(TableIs(naive::Table(file, "de")));
}

// Whether this process has a file open.
bool IsOpen(const std::filesystem::path& path) {
    for (const auto& file : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code isGone;
        if (std::filesystem::read_symlink(file.path(), isGone) == path) {
            return true;
        }
    }
    return false;
}

TEST_F(HostileFiles, APipeThatLacksTheSectionIsReadFromASecondWriterToo) {
    const std::filesystem::path pipe = std::filesystem::canonical(m_bundle.Resources()) / "pipe";
    // Longer than a pipe's buffer, so when it is written the load has the pipe open.
    const std::string first = LongFile(std::string(200, 't'));
    const PipeWriter writers(pipe, [&] {
        std::ofstream(pipe) << first;
        const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
        while (IsOpen(pipe) && std::chrono::steady_clock::now() < end) {
            std::this_thread::yield();
        }
        std::ofstream(pipe) << "QVLANG=fr\nABCD=second\n";
    });
    EXPECT_EQ(Load("none", "pipe"), 2);
    EXPECT_TRUE(TableIs({{"QVLANG", "fr"}, {"ABCD", "second"}}));
}

TEST_F(HostileFiles, WhatIsNotOpenedKeepsTheTableAndWhatHoldsNothingEmptiesIt) {
    m_bundle.Write("x", "QVLANG=en\nABCD=1\n");
    const Table before = {{"QVLANG", "en"}, {"ABCD", "1"}};
    std::filesystem::create_directory(Path("folder"));
    std::filesystem::create_symlink("folder", Path("link to a folder"));
    std::filesystem::create_symlink("/dev/null", Path("null"));
    std::filesystem::create_symlink("nowhere", Path("dangling"));
    std::filesystem::create_symlink("loop", Path("loop"));
    std::filesystem::create_symlink("there", Path("back"));
    std::filesystem::create_symlink("back", Path("there"));
    m_bundle.Write("empty", "");
    const struct {
        const char* name;
        Table after;
    } cases[] = {
        {"folder", {}},       {"link to a folder", {}}, {"null", {}},      {"empty", {}},
        {"dangling", before}, {"loop", before},         {"there", before}, {"dangling/x", before},
        {"loop/x", before},   {"null/x", before},       {"x/x", before},   {"folder/x", before},
        {"x/../x", before},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_EQ(Load("en"), 2);
        EXPECT_EQ(Load("en", c.name), 0);
        EXPECT_EQ(LoadedTable(), c.after);
        // After a load that returned 0, lookups answer null whatever the table holds.
        EXPECT_EQ(ZuGetLocalizedString("ABCD"), nullptr);
    }
}

TEST_F(HostileFiles, AFileThatMayNotBeReadKeepsTheTable) {
    constexpr int kCannotTry = 77;
    m_bundle.Write("x", "QVLANG=en\nABCD=1\n");
    m_bundle.Write("secret", "QVLANG=en\nABCD=2\n");
    std::filesystem::permissions(Path("secret"), std::filesystem::perms::none);
    // The other user must be able to reach the files.
    std::filesystem::path folder = m_bundle.Resources();
    for (int i = 0; i < 3; ++i, folder = folder.parent_path()) {
        std::filesystem::permissions(folder, std::filesystem::perms(0755));
    }
    std::filesystem::permissions(Path("x"), std::filesystem::perms(0644));

    // Root can read everything, so a process of another user tries.
    const pid_t child = fork();
    ASSERT_NE(child, -1);
    if (child == 0) {
        constexpr unsigned kNobody = 65534;
        if (geteuid() == 0 &&
            (setgroups(0, nullptr) != 0 || setgid(kNobody) != 0 || setuid(kNobody) != 0)) {
            _exit(kCannotTry);
        }
        if (Load("en") != 2) {
            _exit(kCannotTry);  // a parent folder is closed to that user
        }
        const bool isRefused = Load("en", "secret") == 0;
        const bool isKept = TableIs({{"QVLANG", "en"}, {"ABCD", "1"}});
        _exit((isRefused ? 0 : 1) + (isKept ? 0 : 2));
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == kCannotTry) {
        GTEST_SKIP() << "this root may not become another user, or none may read here";
    }
    EXPECT_EQ(WEXITSTATUS(status), 0) << "1: not refused, 2: not kept";
}

}  // namespace
