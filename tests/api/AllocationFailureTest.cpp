// Every allocation of a call fails once; the results, the table, the heap and the open files are
// then as promised.
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>
#include <gtest/gtest.h>

#include "support/TemporaryBundle.h"
#include "tests/support/FailingAllocation.h"

namespace {

// Longer than a string object holds inline, so that each copy allocates.
const std::string kLong = "a text that is longer than any string object holds inside itself ";

enum class Outcome { kDone, kThrew };

// Runs a call whose n-th allocation fails.
template <typename Call>
Outcome RunWithFailure(std::size_t n, const Call& call) {
    const FailingAllocation failing(n);
    try {
        call();
    } catch (const std::bad_alloc&) {
        return Outcome::kThrew;
    }
    return Outcome::kDone;
}

std::size_t OpenFiles() {
    const std::filesystem::directory_iterator files("/dev/fd");
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

bool TableIs(const std::map<std::string, std::string>& expected) {
    const auto& table = KorString::gMapLocalizedStrings;
    for (const auto& [key, value] : expected) {
        const auto entry = table.Find(key);
        if (!entry || entry->value != value) {
            return false;
        }
    }
    return table.Size() == expected.size();
}

// The number of allocations in a load of a missing file, each of which failed once.
std::size_t AllocationsBeforeTheOpen(const std::string& language) {
    const TemporaryBundle bundle;
    std::size_t n = 0;
    do {
        ++n;
        RunWithFailure(n, [&] { ZuLoadStrings(language.c_str(), "missing", bundle.Get()); });
    } while (FailingAllocation::HasFailed());
    return n - 1;
}

// After the open, a failed copy would leave the earlier table although the file is open.
TEST(AllocationFailure, ComesBeforeTheOpenInCopyingTheLanguage) {
    EXPECT_EQ(AllocationsBeforeTheOpen(kLong), AllocationsBeforeTheOpen("") + 1);
}

TEST(AllocationFailure, InALoadLeavesTheEarlierTableOrTheEntriesReadSoFar) {
    const TemporaryBundle bundle;
    bundle.Write("old", "QVLANG=old\nOLD_KEY=1\n");
    const std::map<std::string, std::string> old = {{"QVLANG", "old"}, {"OLD_KEY", "1"}};

    std::string file = "QVLANG=" + kLong + "skipped\n" + kLong + "\n";
    std::vector<std::pair<std::string, std::string>> entries = {{"QVLANG", kLong + "wanted"}};
    file += "QVLANG=" + entries[0].second + "\n";
    for (int i = 0; i < 200; ++i) {  // enough for the table to grow
        const std::string padding(static_cast<std::size_t>(i), '.');  // so that the values do, too
        entries.emplace_back(kLong + std::to_string(i), '\n' + kLong + padding);
        file += entries.back().first + "=\"\\n" + kLong + padding + "\"\n";
    }
    bundle.Write("new", file);
    const std::string language = entries[0].second;
    std::map<std::string, std::string> all(entries.begin(), entries.end());

    std::size_t threwBefore = 0;
    std::size_t threwAfter = 0;
    std::size_t endedEarly = 0;
    bool failed = true;
    for (std::size_t n = 1; failed; ++n) {
        SCOPED_TRACE("allocation " + std::to_string(n));
        ASSERT_EQ(ZuLoadStrings("old", "old", bundle.Get()), 2);
        const std::size_t openFiles = OpenFiles();
        int result = -1;
        const Outcome outcome = RunWithFailure(
            n, [&] { result = ZuLoadStrings(language.c_str(), "new", bundle.Get()); });
        failed = FailingAllocation::HasFailed();
        EXPECT_EQ(OpenFiles(), openFiles);

        const auto& table = KorString::gMapLocalizedStrings;
        if (outcome == Outcome::kThrew && TableIs(old)) {
            ++threwBefore;
            EXPECT_STREQ(ZuGetLocalizedString("OLD_KEY"), "1") << "the loaded count is unchanged";
        } else if (!failed) {
            EXPECT_EQ(result, 201);
            EXPECT_TRUE(TableIs(all));
        } else if (outcome == Outcome::kDone && !TableIs({}) &&
                   table.Find("QVLANG")->value == kLong + "skipped") {
            // Reading a line failed in the search; the file was read again for its first section.
            EXPECT_EQ(result, 1);
            ++endedEarly;
        } else {
            // Reading a line failed, which ends the section, or an exception escaped. Either way
            // the table holds the entries up to there.
            outcome == Outcome::kThrew ? ++threwAfter : ++endedEarly;
            if (outcome == Outcome::kDone) {
                EXPECT_EQ(result, static_cast<int>(table.Size()));
            }
            EXPECT_TRUE(TableIs(
                {entries.begin(), entries.begin() + static_cast<std::ptrdiff_t>(table.Size())}));
        }
    }
    EXPECT_GT(threwBefore, 0U);
    EXPECT_GT(threwAfter, 10U);
    EXPECT_GT(endedEarly, 1U);

    // A load leaves nothing allocated but the table.
    ASSERT_EQ(ZuLoadStrings("", "new", bundle.Get()), 1);
    const std::size_t live = LiveAllocations();
    failed = true;
    for (std::size_t n = 1; failed; ++n) {
        RunWithFailure(n, [&] { ZuLoadStrings(language.c_str(), "new", bundle.Get()); });
        failed = FailingAllocation::HasFailed();
        ASSERT_EQ(ZuLoadStrings("", "new", bundle.Get()), 1);
        EXPECT_EQ(LiveAllocations(), live) << "allocation " << n;
    }
}

// Growing with the text, the result would need several allocations.
TEST(AllocationFailure, CanHappenOnceInConvertingAText) {
    const std::string text = kLong + "\\n" + kLong;
    const FailingAllocation failing(2);
    EXPECT_EQ(KorString::ConvertNewLine(&text).size(), text.size() - 1);
    EXPECT_FALSE(FailingAllocation::HasFailed());
}

TEST(AllocationFailure, CannotHappenInAPlainLookup) {
    const TemporaryBundle bundle;
    bundle.Write("x", "QVLANG=en\n" + kLong + "=1\n");
    ASSERT_EQ(ZuLoadStrings("en", "x", bundle.Get()), 2);
    const FailingAllocation failing(1);
    EXPECT_STREQ(KorGetLocalizedString(kLong.c_str()), "1");
    EXPECT_EQ(KorGetLocalizedString(kLong.c_str() + 1), nullptr);
    EXPECT_FALSE(FailingAllocation::HasFailed());
}

TEST(AllocationFailure, InGetLineSetsTheStreamBadAndIsFalse) {
    const TemporaryBundle bundle;
    bundle.Write("x", kLong + "\nnext\n");
    std::ifstream stream(bundle.Resources() / "x");
    std::string line;
    bool read = true;
    EXPECT_EQ(RunWithFailure(1, [&] { read = KorString::GetLine(stream, line); }), Outcome::kDone);
    EXPECT_TRUE(FailingAllocation::HasFailed());
    EXPECT_FALSE(read);
    EXPECT_TRUE(stream.bad());
}

TEST(AllocationFailure, InTheLineFunctionsIsPassedOn) {
    const std::string text = kLong + "\\n" + kLong;
    const std::size_t live = LiveAllocations();
    bool failed = true;
    std::size_t n = 1;
    for (; failed; ++n) {
        std::string converted;
        const Outcome outcome =
            RunWithFailure(n, [&] { converted = KorString::ConvertNewLine(&text); });
        failed = FailingAllocation::HasFailed();
        EXPECT_EQ(outcome, failed ? Outcome::kThrew : Outcome::kDone) << "allocation " << n;
    }
    EXPECT_GT(n, 2U);

    failed = true;
    for (n = 1; failed; ++n) {
        std::string key;
        std::string value;
        const Outcome outcome = RunWithFailure(
            n, [&] { KorString::GetLocalizedElement(kLong + "=\"" + text + "\"", &key, &value); });
        failed = FailingAllocation::HasFailed();
        EXPECT_EQ(outcome, failed ? Outcome::kThrew : Outcome::kDone) << "allocation " << n;
    }
    EXPECT_GT(n, 4U);
    EXPECT_EQ(LiveAllocations(), live);
}

TEST(AllocationFailure, InOpeningABundleIsPassedOn) {
    const TemporaryFolder folder;
    // CoreFoundation has its own memory, and only a copy of a long path needs some from us.
    const std::filesystem::path path = folder.Path() / std::string(100, 'x');
    std::filesystem::create_directory(path);
    const std::size_t live = LiveAllocations();
    bool failed = true;
    std::size_t n = 1;
    for (; failed; ++n) {
        __CFBundle* bundle = nullptr;
        const Outcome outcome = RunWithFailure(n, [&] { bundle = OpenBundle(path); });
        failed = FailingAllocation::HasFailed();
        EXPECT_EQ(outcome, failed ? Outcome::kThrew : Outcome::kDone) << "allocation " << n;
        EXPECT_EQ(bundle == nullptr, failed) << "allocation " << n;
        CloseBundle(bundle);
        EXPECT_EQ(LiveAllocations(), live) << "allocation " << n;
    }
    EXPECT_GT(n, 2U);
}

}  // namespace
