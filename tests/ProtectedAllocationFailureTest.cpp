// Every allocation of a first look-up fails once, the decoder's included.
#include <string>

#include <OrvaLanguage/OrvaLanguage.h>
#include <gtest/gtest.h>

#include "tests/support/FailingAllocation.h"
#include "tests/support/StoredForm.h"
#include "tools/orva-strings/TemporaryBundle.h"

namespace {

TEST(ProtectedAllocationFailure, IsNeverThrownAndNeverAnswersGarbage) {
    const std::string text = "a text that is longer than any string object holds inside itself";
    const TemporaryBundle bundle;
    std::string file = "QVLANG=en\n";
    for (int i = 0; i < 100; ++i) {
        file += "IDE_" + std::to_string(i) + "=\"" + Stored(text, DevelopmentKey()) + "\"\n";
    }
    bundle.Write("x", file);
    ASSERT_EQ(ZuLoadStrings("en", "x", bundle.Get()), 101);

    int nulls = 0;
    int empties = 0;
    int texts = 0;
    bool failed = true;
    for (std::size_t n = 1; failed; ++n) {
        const std::string key = "IDE_" + std::to_string(n);
        const std::size_t live = LiveAllocations();
        const char* answer = nullptr;
        {
            const FailingAllocation failing(n);
            answer = ZuGetLocalizedString(key.c_str());
            failed = FailingAllocation::HasFailed();
        }
        SCOPED_TRACE("allocation " + std::to_string(n));
        if (answer == nullptr) {
            EXPECT_TRUE(failed);
            ++nulls;
            EXPECT_LE(LiveAllocations(), live + 2) << "at most the buffer and the cache's index";
            EXPECT_EQ(ZuGetLocalizedString(key.c_str()), text) << "the next look-up tries again";
        } else if (*answer == '\0') {
            // The filling call ran out of memory and wrote nothing, and its status is not asked.
            EXPECT_TRUE(failed);
            ++empties;
            EXPECT_EQ(ZuGetLocalizedString(key.c_str()), answer);
        } else {
            // A copy that only measures may fail unseen.
            EXPECT_EQ(answer, text);
            EXPECT_GT(n, 1U) << "the first is the sizing call's, which has failed then";
            ++texts;
        }
    }
    EXPECT_GT(nulls, 5);
    EXPECT_GT(empties, 5);
    EXPECT_GE(texts, 1);
}

TEST(ProtectedLookup, LeavesNothingBehindButTheCachesEntry) {
    const TemporaryBundle bundle;
    const std::string stored = Stored("a text", DevelopmentKey());
    bundle.Write("x", "QVLANG=en\nIDE_LEFT_1=" + stored + "\nIDE_LEFT_2=" + stored + "\n");
    ASSERT_EQ(ZuLoadStrings("en", "x", bundle.Get()), 3);
    ZuGetLocalizedString("IDE_LEFT_1");  // with it the cache gets room for several
    const std::size_t live = LiveAllocations();
    EXPECT_STREQ(ZuGetLocalizedString("IDE_LEFT_2"), "a text");
    EXPECT_EQ(LiveAllocations(), live);
}

TEST(ProtectedFreedMemory, HoldsNeitherTextNorKeys) {
    const std::string text = "another text that nobody is to find in memory that was given back";
    const TemporaryBundle bundle;
    const Bytes key = DevelopmentKey();
    const Bytes derived = DerivedBlocks(key);
    constexpr std::size_t kBlock = 16;
    bundle.Write("x", "QVLANG=en\nIDE_FREE_1=" + Stored(text, key) + "\nIDE_FREE_2=" +
                          Stored(text, key) + "\nIDE_FREE_3=" + Stored(text, key) + "\n");
    ASSERT_EQ(ZuLoadStrings("en", "x", bundle.Get()), 4);
    const struct {
        const char* key;
        const void* bytes;
    } cases[] = {
        {"IDE_FREE_1", text.data() + 16},
        {"IDE_FREE_2", derived.data() + kBlock},      // of the encryption key
        {"IDE_FREE_3", derived.data() + 4 * kBlock},  // of the tag key
    };
    for (const auto& c : cases) {
        const FreedMemoryWatch watch(c.bytes, 16);
        EXPECT_EQ(ZuGetLocalizedString(c.key), text);
        EXPECT_FALSE(FreedMemoryWatch::HasSeen()) << c.key;
        EXPECT_GT(FreedMemoryWatch::Blocks(), 10U);
    }
}

}  // namespace
