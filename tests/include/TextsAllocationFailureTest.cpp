// Every allocation of a call fails once: it throws, or its result is right.
#include <cstddef>
#include <filesystem>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include <OrvaLanguage/OrvaLanguage.h>
#include <OrvaLanguage/Texts.hpp>
#include <gtest/gtest.h>

#include "support/TemporaryBundle.h"
#include "tests/support/FailingAllocation.h"

namespace {

// Longer than a string object holds inline, so that each copy allocates.
const std::string kLong = "a text that is longer than any string object holds inside itself ";

// Repeats a call until none of its allocations fails, and passes each result to check. Returns how
// many calls threw.
template <typename Call, typename Check>
int FailEachAllocation(const Call& call, const Check& check) {
    int threw = 0;
    for (std::size_t n = 1;; ++n) {
        std::optional<decltype(call())> result;
        {
            const FailingAllocation failing(n);
            try {
                result.emplace(call());
            } catch (const std::bad_alloc&) {
                ++threw;
            }
        }
        const bool failed = FailingAllocation::HasFailed();
        if (result.has_value()) {
            check(*result, failed);
        }
        if (!failed) {
            return threw;
        }
    }
}

TEST(TextsAllocationFailure, InSectionsNeverLeavesOutANameSilently) {
    const TemporaryBundle bundle;
    const std::vector<std::string> names = {kLong + "1", kLong + "2"};
    bundle.Write("x.strings", "QVLANG=" + names[0] + "\nQVLANG=" + names[1] + "\n");
    const std::filesystem::path path = bundle.Resources() / "x.strings";
    int unreadable = 0;
    const int threw =
        FailEachAllocation([&] { return OrvaLanguage::Sections(path); },
                           [&](const std::optional<std::vector<std::string>>& found, bool failed) {
                               unreadable += found.has_value() ? 0 : 1;
                               EXPECT_TRUE(found == names || (failed && !found.has_value()));
                           });
    EXPECT_GT(threw, 5);
    EXPECT_GT(unreadable, 0);
}

TEST(TextsAllocationFailure, InLoadPreferredNeverNamesAnotherSectionThanTheLoadedOne) {
    const TemporaryBundle bundle;
    bundle.Write("x.strings", "QVLANG=" + kLong + "1\nQVLANG=" + kLong + "2\nMENU=1\n");
    const std::vector<OrvaLanguage::SectionTag> sections = {
        {kLong + "1", "en"}, {kLong + "2", "de"}, {kLong + "3", "fr"}};
    const std::vector<std::string> tags = {"fr_FR.UTF-8", "de_DE.UTF-8"};
    const int threw = FailEachAllocation(
        [&] { return OrvaLanguage::LoadPreferred(tags, "x.strings", bundle.Get(), sections); },
        [](const OrvaLanguage::LoadedSection& loaded, bool failed) {
            EXPECT_GT(loaded.entries, 0);
            EXPECT_STREQ(ZuGetLocalizedString("QVLANG"), loaded.section.c_str());
            EXPECT_EQ(loaded.section, kLong + (loaded.isFallback ? "1" : "2"));
            EXPECT_TRUE(failed || !loaded.isFallback);
        });
    EXPECT_GT(threw, 10);
}

TEST(TextsAllocationFailure, InACopyIsPassedOnAndATextNeedsNone) {
    const TemporaryBundle bundle;
    bundle.Write("x.strings", "QVLANG=" + kLong + "\n");
    ASSERT_EQ(ZuLoadStrings("", "x.strings", bundle.Get()), 1);
    EXPECT_EQ(FailEachAllocation([] { return OrvaLanguage::CopyText("QVLANG"); },
                                 [](const std::optional<std::string>& copy, bool failed) {
                                     EXPECT_FALSE(failed);
                                     EXPECT_EQ(copy, kLong);
                                 }),
              1);
    const FailingAllocation failing(1);
    EXPECT_EQ(OrvaLanguage::TextOr("QVLANG", ""), ZuGetLocalizedString("QVLANG"));
    EXPECT_FALSE(FailingAllocation::HasFailed());
}

}  // namespace
