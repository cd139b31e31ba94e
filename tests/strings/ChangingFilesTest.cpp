// Files that change while they are read, and failing reads: the result and the table are as the
// format and the header promise.
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fuzz/NaiveStrings.h"
#include "tests/strings/HostileFiles.h"
#include "tests/support/FileFaults.h"
#include "tests/support/ReadFaults.h"

namespace {

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
        GTEST_SKIP()
            << "libc++ reads through the C library, whose own calls of read can't be replaced";
#endif
    }

    // Loads with the event before the n-th read, for every n.
    void TryAtEveryRead(const std::string& file, std::size_t maxBytes, const Event& event) const {
        for (const char* language : {"en", "DE", "none"}) {
            bool hasHappened = true;
            for (std::size_t n = 1; hasHappened; ++n) {
                SCOPED_TRACE(std::string(language) + ", read " + std::to_string(n));
                m_bundle.Write("x", file);
                std::string first = file;
                std::string again = file;
                hasHappened = false;
                ReadFaults::Plan plan;
                plan.maxBytes = maxBytes;
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
                ASSERT_TRUE(n > 1 || hasHappened) << "no read was replaced";
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
        std::size_t maxBytes;
    } cases[] = {{longFile, ReadFaults::kAll}, {kShortFile, 3}};
    for (const auto& c : cases) {
        for (const std::size_t part : Sizes{0, 1, 4, 7, 9}) {
            const std::size_t size = c.file.size() * part / 10;
            SCOPED_TRACE("cut at " + std::to_string(size));
            TryAtEveryRead(c.file, c.maxBytes,
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
        std::size_t maxBytes;
    } cases[] = {{LongFile("text"), ReadFaults::kAll}, {kShortFile, 1}, {kShortFile, 7}};
    for (const auto& c : cases) {
        const auto reading = [&](std::size_t bytes) { return LeftByAFailure(UpTo(c.file, bytes)); };
        // One failure, so that a second reading succeeds; then failures from there on.
        TryAtEveryRead(c.file, c.maxBytes, {[] {}, reading, c.file, 1});
        TryAtEveryRead(c.file, c.maxBytes, {[] {}, reading, "", ReadFaults::kAll});
    }
}

TEST_F(ChangingFiles, AnInterruptedReadIsRetried) {
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
            for (const std::size_t maxBytes : Sizes{1, 2, 3, 1000}) {
                SCOPED_TRACE(std::string(language) + ", reads of " + std::to_string(maxBytes));
                const Table expected = naive::Table(file, language);
                ReadFaults::Plan plan;
                plan.maxBytes = maxBytes;
                int entries = 0;
                {
                    const ReadFaults faults(plan);
                    entries = Load(language);
                }
                EXPECT_EQ(entries, static_cast<int>(expected.size()));
                EXPECT_TRUE(TableIs(expected));
                // At least to the end of the first section.
                EXPECT_GE(ReadFaults::Calls(), file.rfind("QVLANG=") / maxBytes);
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

}  // namespace
