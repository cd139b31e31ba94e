// Every allocation of a first lookup fails once, including the decoder's.
#include <string>
#include <thread>

#include <OrvaLanguage/OrvaLanguage.h>
#include <gtest/gtest.h>

#include "support/TemporaryBundle.h"
#include "tests/support/FailingAllocation.h"
#include "tests/support/StoredForm.h"

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
        const std::size_t left = LiveAllocations() - live;
        SCOPED_TRACE("allocation " + std::to_string(n));
        if (answer == nullptr) {
            EXPECT_TRUE(failed);
            ++nulls;
            if (empties == 0) {
                EXPECT_EQ(left, 0U) << "the sizing call failed, or the buffer";
            }
            EXPECT_LE(left, 2U) << "at most the buffer and the cache's index";
            EXPECT_EQ(ZuGetLocalizedString(key.c_str()), text) << "the next lookup tries again";
        } else if (*answer == '\0') {
            // The filling call ran out of memory and wrote nothing; its status is not checked.
            EXPECT_TRUE(failed);
            ++empties;
            EXPECT_EQ(ZuGetLocalizedString(key.c_str()), answer);
        } else {
            // A copy made only for measuring can fail unnoticed.
            EXPECT_EQ(answer, text);
            EXPECT_GT(n, 1U) << "the first one is in the sizing call, which would have failed";
            ++texts;
        }
    }
    EXPECT_GT(nulls, 5);
    EXPECT_GT(empties, 5);
    EXPECT_GE(texts, 1);
}

TEST(ProtectedAllocationFailure, LeavesNothingAndNoLockHeldWhereTheCacheHasRoom) {
    const TemporaryBundle bundle;
    std::string file = "QVLANG=en\nIDE_BAD=no stored text\n";
    for (int i = 0; i < 30; ++i) {
        file += "IDE_ROOM_" + std::to_string(i) + '=' + Stored("a text", DevelopmentKey()) + '\n';
    }
    bundle.Write("x", file);
    ASSERT_EQ(ZuLoadStrings("en", "x", bundle.Get()), 32);
    ZuGetLocalizedString("IDE_ROOM_0");
    std::size_t points = 0;
    for (bool failed = true; failed; points += failed ? 1 : 0) {
        SCOPED_TRACE("allocation " + std::to_string(points + 1));
        const std::string key = "IDE_ROOM_" + std::to_string(points + 1);
        const std::size_t live = LiveAllocations();
        {
            const FailingAllocation failing(points + 1);
            ZuGetLocalizedString(key.c_str());
            failed = FailingAllocation::HasFailed();
        }
        EXPECT_EQ(LiveAllocations(), live);
        // The locks are recursive, so only another thread notices.
        std::thread([] { EXPECT_EQ(ZuGetLocalizedString("IDE_BAD"), nullptr); }).join();
    }
    EXPECT_GT(points, 10U);
    EXPECT_LT(points, 30U) << "too few keys";
}

TEST(ProtectedLookup, LeavesNothingBehindButTheCachesEntry) {
    const TemporaryBundle bundle;
    const std::string stored = Stored("a text", DevelopmentKey());
    bundle.Write("x", "QVLANG=en\nIDE_LEFT_1=" + stored + "\nIDE_LEFT_2=" + stored + "\n");
    ASSERT_EQ(ZuLoadStrings("en", "x", bundle.Get()), 3);
    ZuGetLocalizedString("IDE_LEFT_1");  // makes the cache allocate room for several
    const std::size_t live = LiveAllocations();
    EXPECT_STREQ(ZuGetLocalizedString("IDE_LEFT_2"), "a text");
    EXPECT_EQ(LiveAllocations(), live);
}

TEST(ProtectedFreedMemory, HoldsNeitherTextNorKeys) {
    // An answer ends at the NUL; what follows it is cleared as well.
    const std::string answer = "another text";
    const std::string text = answer + '\0' + "that must not be found in memory that has been freed";
    const TemporaryBundle bundle;
    const Bytes key = DevelopmentKey();
    const Bytes derived = DerivedBlocks(key);
    constexpr std::size_t kBlock = 16;
    const struct {
        const char* what;
        const void* bytes;
    } secrets[] = {
        {"text", text.data() + kBlock},           {"material", key.data()},
        {"material's end", key.data() + kBlock},  {"encryption key", derived.data() + kBlock},
        {"tag key", derived.data() + 4 * kBlock},
    };
    const std::string good = Stored(text, key);
    std::string bad = good;
    bad[0] =
        bad[0] == '0' ? '1' : '0';  // a digit of the tag: all but one block of the text decrypt
    std::string file = "QVLANG=en\n";
    for (const auto& secret : secrets) {
        file.append("IDE_GOOD_").append(secret.what).append("=").append(good).append("\n");
        file.append("IDE_BAD_").append(secret.what).append("=").append(bad).append("\n");
    }
    bundle.Write("x", file);
    ASSERT_EQ(ZuLoadStrings("en", "x", bundle.Get()), 11);
    for (const auto& secret : secrets) {
        SCOPED_TRACE(secret.what);
        const std::string goodKey = std::string("IDE_GOOD_") + secret.what;
        const std::string badKey = std::string("IDE_BAD_") + secret.what;
        const FreedMemoryWatch watch(secret.bytes, kBlock);
        EXPECT_EQ(ZuGetLocalizedString(goodKey.c_str()), answer);
        EXPECT_GT(FreedMemoryWatch::Blocks(), 10U);
        EXPECT_EQ(ZuGetLocalizedString(badKey.c_str()), nullptr);
        EXPECT_FALSE(FreedMemoryWatch::HasSeen());
    }
}

}  // namespace
