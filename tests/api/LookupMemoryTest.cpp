// Once a lookup has returned, no memory of the process holds what decoding worked with: static
// objects, the heap including freed blocks, the stacks. A decoded text is in the library's cache
// and nowhere else.
#include <functional>
#include <string>

#include <OrvaLanguage/OrvaLanguage.h>
#include <gtest/gtest.h>

#include "support/TemporaryBundle.h"
#include "tests/support/ProcessMemory.h"
#include "tests/support/Sanitizers.h"
#include "tests/support/Secrets.h"
#include "tests/support/StoredForm.h"

namespace {

using Hits = MemorySearch::Hits;

constexpr std::size_t kText = 1000;  // several of the pieces in which texts are decrypted

std::string TestName() {
    return ::testing::UnitTest::GetInstance()->current_test_info()->name();
}

// A text for this test only, since the cache keeps those of other tests. No eight bytes of it
// repeat.
std::string Text() {
    std::string text;
    for (std::size_t i = std::hash<std::string>()(TestName()) % 1'000'000; text.size() < kText;
         ++i) {
        text += std::to_string(i * 7919) + ' ';
    }
    text.resize(kText);
    return text;
}

class LookupMemory : public ::testing::Test {
protected:
    void SetUp() override {
        if (kHasSanitizer) {
            GTEST_SKIP() << "a sanitizer's shadow of the memory is too large to search";
        }
        m_search.LookFor([this] {
            const std::string stored = Stored(Text(), DevelopmentKey());
            std::string damaged = stored;
            damaged[3] = damaged[3] == '0' ? '1' : '0';
            m_bundle.Write("x", "QVLANG=en\nMENU_OPEN=\"Open\"\nIDE_BEFORE=\"" +
                                    Stored("x", DevelopmentKey()) + "\"\n" + m_hit + "=\"" +
                                    stored + "\"\nIDE_DAMAGED=\"" + damaged +
                                    "\"\nIDE_OTHER_KEY=\"" + Stored(Text(), CountingBytes(32)) +
                                    "\"\nIDE_READABLE=\"x\"\n");
            return SecretsOf(DevelopmentKey(), Text());
        });
        ASSERT_EQ(ZuLoadStrings("en", "x", m_bundle.Get()), 7);
        ASSERT_STREQ(ZuGetLocalizedString("IDE_BEFORE"), "x");
    }

    const std::string m_hit = "IDE_" + TestName();
    TemporaryBundle m_bundle;
    MemorySearch m_search;
};

TEST_F(LookupMemory, HoldsATextOnceAndNoKey) {
    const char* const answer = ZuGetLocalizedString(m_hit.c_str());
    EXPECT_EQ(m_search.Found(), (Hits{{"the text in [heap]", kText / 8}}));
    EXPECT_EQ(answer, Text());
}

TEST_F(LookupMemory, HoldsATextOnceAndNoKeyOnceItIsCached) {
    for (int i = 0; i < 3; ++i) {
        ZuGetLocalizedString(m_hit.c_str());
    }
    EXPECT_EQ(m_search.Found(), (Hits{{"the text in [heap]", kText / 8}}));
}

TEST_F(LookupMemory, HoldsNeitherTextNorKeyAfterALookupThatAnswersNull) {
    for (const char* const key :
         {"IDE_DAMAGED", "IDE_OTHER_KEY", "IDE_READABLE", "IDE_NOT_THERE", "NOT_THERE"}) {
        const char* const answer = ZuGetLocalizedString(key);
        EXPECT_EQ(m_search.Found(), Hits()) << key;
        EXPECT_EQ(answer, nullptr) << key;
    }
}

TEST_F(LookupMemory, HoldsATextOnceAndNoKeyAfterALookupInAThread) {
    Hits found;
    CallInThread([&] { ZuGetLocalizedString(m_hit.c_str()); }, [&] { found = m_search.Found(); });
    // The cache may be in the thread's own heap.
    ASSERT_EQ(found.size(), 1U) << ::testing::PrintToString(found);
    EXPECT_EQ(found.begin()->first.compare(0, 9, "the text "), 0) << found.begin()->first;
    EXPECT_EQ(found.begin()->second, kText / 8);
}

TEST_F(LookupMemory, HoldsNoKeyAfterAReload) {
    ZuGetLocalizedString(m_hit.c_str());
    const int count = ZuLoadStrings("en", "x", m_bundle.Get());
    EXPECT_EQ(m_search.Found(), (Hits{{"the text in [heap]", kText / 8}}));
    EXPECT_EQ(count, 7);
}

}  // namespace
