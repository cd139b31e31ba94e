// How the lookup calls the decoder and what it does with odd answers, tested with stand-ins for the
// decoder and the plain lookup.
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>
#include <gtest/gtest.h>

#include "api/DecodeProtectedString.h"
#include "api/LoadedCount.h"
#include "api/PlaintextCache.h"
#include "support/TemporaryFolder.h"
#include "tests/support/FailingAllocation.h"

namespace {

struct Call {
    std::int32_t status;
    std::int32_t length;
    const char* text;
    std::int32_t outputLength;
    bool isSizing;
};

std::vector<Call>* gCalls = nullptr;

// What the stand-ins answer.
const char* gStoredText = nullptr;
std::int32_t gSizingStatus = 0;
std::int32_t gSizingOutputLength = 0;
std::int32_t gFillingStatus = 0;
std::string* gFillingOutput = nullptr;

class DecoderCalls : public ::testing::Test {
protected:
    void SetUp() override {
        m_calls.reserve(16);  // so that it does not allocate in a test that counts
        gCalls = &m_calls;
        gFillingOutput = &m_output;
        gStoredText = "0123456789ABCDEF";
        gSizingStatus = 0;
        gSizingOutputLength = 0;
        gFillingStatus = 0;
        gLoadedCount = 1;
        gMapDecodedStrings.Clear();  // so that each test's first entry allocates
    }

    std::vector<Call> m_calls;
    std::string m_output = "text";
};

TEST_F(DecoderCalls, AreTwoInTheFirstLookupAndNoneLater) {
    const char* const text = ZuGetLocalizedString("IDE_TWO");
    EXPECT_STREQ(text, "text");
    ASSERT_EQ(m_calls.size(), 2U);
    EXPECT_TRUE(m_calls[0].isSizing);
    EXPECT_FALSE(m_calls[1].isSizing);
    for (const Call& call : m_calls) {
        EXPECT_EQ(call.status, 0);
        EXPECT_EQ(call.length, 16);
        EXPECT_EQ(call.text, gStoredText);
        EXPECT_EQ(call.outputLength, 0);
    }
    gStoredText = "something else";
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(ZuGetLocalizedString("IDE_TWO"), text);
    }
    EXPECT_EQ(m_calls.size(), 2U);
}

TEST_F(DecoderCalls, IsOneInEachLookupOfAnUndecodableText) {
    for (const std::int32_t status : {1, -1, 207}) {
        gSizingStatus = status;
        m_calls.clear();
        for (std::size_t i = 1; i <= 3; ++i) {
            EXPECT_EQ(ZuGetLocalizedString("IDE_NEVER"), nullptr);
            ASSERT_EQ(m_calls.size(), i);
            EXPECT_TRUE(m_calls.back().isSizing);
        }
    }
    gSizingStatus = 0;
    EXPECT_STREQ(ZuGetLocalizedString("IDE_NEVER"), "text") << "nothing was kept of it";
}

TEST_F(DecoderCalls, AreNotMadeForAPlainOrMissingKeyOrAfterAFailedLoad) {
    EXPECT_EQ(ZuGetLocalizedString("ide_none"), gStoredText);
    EXPECT_EQ(ZuGetLocalizedString("MENU_OPEN"), gStoredText);
    EXPECT_EQ(ZuGetLocalizedString("ID"), gStoredText);
    gStoredText = nullptr;
    EXPECT_EQ(ZuGetLocalizedString("IDE_NONE"), nullptr);
    gStoredText = "stored";
    for (const std::int32_t count : {0, -1, INT32_MIN}) {
        gLoadedCount = count;
        EXPECT_EQ(ZuGetLocalizedString("IDE_NONE"), nullptr) << count;
        EXPECT_EQ(ZuGetLocalizedString("MENU_OPEN"), nullptr) << count;
    }
    EXPECT_TRUE(m_calls.empty());
}

TEST_F(DecoderCalls, AnswersNullForAKeyThatIsInTheCacheButNotInTheTable) {
    EXPECT_STREQ(ZuGetLocalizedString("IDE_GONE"), "text");
    gStoredText = nullptr;
    EXPECT_EQ(ZuGetLocalizedString("IDE_GONE"), nullptr);
}

TEST_F(DecoderCalls, TakesTheFillingCallsOutputWhateverItsStatus) {
    gFillingStatus = 5;
    m_output = "as filled";
    EXPECT_STREQ(ZuGetLocalizedString("IDE_STATUS"), "as filled");
    EXPECT_EQ(m_calls.size(), 2U);
}

TEST_F(DecoderCalls, HandsTheSizingCallsLengthOnWithoutUsingIt) {
    gSizingOutputLength = 12345;
    EXPECT_STREQ(ZuGetLocalizedString("IDE_LENGTH"), "text");
    EXPECT_EQ(m_calls[1].outputLength, 12345) << "the same word";
}

TEST_F(DecoderCalls, FillsABufferOfTheStoredTextsLength) {
    const FailingAllocation counting(0);
    EXPECT_STREQ(ZuGetLocalizedString("IDE_SIZE"), "text");
    EXPECT_EQ(FailingAllocation::SizeOfFirst(), 16U);
}

TEST_F(DecoderCalls, EndsTheTextAtItsFirstNul) {
    m_output = std::string("before\0behind", 13);
    EXPECT_STREQ(ZuGetLocalizedString("IDE_NUL"), "before");
    EXPECT_EQ(gMapDecodedStrings.Find("IDE_NUL")->Value(), "before");
}

TEST_F(DecoderCalls, FindsNoMemoryForATextOf2GiB) {
    // A text of that length: one mebibyte of memory mapped 2048 times, then the text's end.
    constexpr std::size_t kPiece = std::size_t{1} << 20U;
    constexpr std::size_t kPieces = 2048;
    const TemporaryFolder folder;
    const int file = open((folder.Path() / "digits").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(ftruncate(file, static_cast<off_t>(kPiece)), 0);
    auto* const text =
        static_cast<char*>(mmap(nullptr, kPieces * kPiece + kPiece, PROT_READ | PROT_WRITE,
                                MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
    ASSERT_NE(static_cast<void*>(text), MAP_FAILED);
    for (std::size_t i = 0; i < kPieces; ++i) {
        ASSERT_NE(mmap(text + i * kPiece, kPiece, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED,
                       file, 0),
                  MAP_FAILED);
    }
    std::memset(text, 'A', kPiece);
    gStoredText = text;
    EXPECT_EQ(ZuGetLocalizedString("IDE_HUGE"), nullptr);
    ASSERT_EQ(m_calls.size(), 1U) << "no buffer, so no filling call";
    EXPECT_EQ(m_calls[0].length, INT32_MIN);
    EXPECT_EQ(gMapDecodedStrings.Find("IDE_HUGE"), nullptr);
    munmap(text, kPieces * kPiece + kPiece);
    close(file);
}

TEST_F(DecoderCalls, LeaveTheBufferWhenMemoryRunsOutAfterThem) {
    const std::size_t live = LiveAllocations();
    {
        const FailingAllocation failing(1);  // the buffer
        EXPECT_EQ(ZuGetLocalizedString("IDE_BUFFER"), nullptr);
    }
    EXPECT_EQ(LiveAllocations(), live);
    EXPECT_EQ(m_calls.size(), 1U);
    {
        const FailingAllocation failing(2);  // the cache's entry
        EXPECT_EQ(ZuGetLocalizedString("IDE_BUFFER"), nullptr);
        EXPECT_TRUE(FailingAllocation::HasFailed());
    }
    EXPECT_LE(LiveAllocations(), live + 2) << "the buffer, and what the cache grew by";
    EXPECT_GE(LiveAllocations(), live + 1) << "the buffer is left on purpose";
    EXPECT_EQ(gMapDecodedStrings.Find("IDE_BUFFER"), nullptr);
    EXPECT_STREQ(ZuGetLocalizedString("IDE_BUFFER"), "text") << "the next lookup tries again";
}

}  // namespace

const char* KorGetLocalizedString(const char* key) {
    return key == nullptr ? nullptr : gStoredText;
}

void DecodeProtectedString(std::int32_t* pStatus, std::int32_t nLength, const char* pText,
                           std::int32_t* pOutputLength, char* pOutput) noexcept {
    gCalls->push_back({*pStatus, nLength, pText, *pOutputLength, pOutput == nullptr});
    if (pOutput == nullptr) {
        *pStatus = gSizingStatus;
        *pOutputLength = gSizingOutputLength;
        return;
    }
    *pStatus = gFillingStatus;
    std::memcpy(pOutput, gFillingOutput->data(), gFillingOutput->size());
    *pOutputLength = static_cast<std::int32_t>(gFillingOutput->size());
}
