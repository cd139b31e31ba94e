// A search of the process's memory finds what is there, wherever it is. The tests of how long
// secrets live depend on it.
#include <cstdlib>
#include <cstring>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <sys/mman.h>
#include <vector>

#include <gtest/gtest.h>

#include "clearing/ClearMemory.h"
#include "tests/support/ProcessMemory.h"
#include "tests/support/Sanitizers.h"

namespace {

constexpr std::size_t kSize = 40;
using Hits = MemorySearch::Hits;

std::uint8_t gInitialised[kSize] = {1};
std::uint8_t gZero[kSize];

// A byte of the secret. No two of its bytes occur in a row where no test put them.
std::uint8_t ByteAt(std::size_t i) {
    return static_cast<std::uint8_t>(0x5D * (i + 1) + i * i * 7);
}

void Plant(volatile std::uint8_t* place) {
    for (std::size_t i = 0; i < kSize; ++i) {
        place[i] = ByteAt(i);
    }
}

class ProcessMemory : public ::testing::Test {
protected:
    void SetUp() override {
        if (kHasSanitizer) {
            GTEST_SKIP() << "a sanitizer's shadow of the memory is too large to search";
        }
        m_search.LookFor([] {
            Bytes secret(kSize);
            Plant(secret.data());
            return MemorySearch::Secrets{{"the secret", secret}};
        });
        ASSERT_EQ(m_search.Found(), Hits()) << "it is found before a test has put it anywhere";
    }

    // Where the whole secret was found, "nowhere", or what was found of it.
    std::string Place() const {
        const Hits found = m_search.Found();
        if (found.empty()) {
            return "nowhere";
        }
        const auto& [what, count] = *found.begin();
        return found.size() == 1 && count == kSize / 8 ? what.substr(std::strlen("the secret in "))
                                                       : ::testing::PrintToString(found);
    }

    MemorySearch m_search;
};

TEST_F(ProcessMemory, IsSearchedInStaticObjects) {
    Plant(gInitialised);
    EXPECT_NE(Place(), "nowhere");
    ClearMemory(gInitialised, kSize);
    EXPECT_EQ(Place(), "nowhere");
    Plant(gZero);
    EXPECT_NE(Place(), "nowhere");
    ClearMemory(gZero, kSize);
    EXPECT_EQ(Place(), "nowhere");
}

TEST_F(ProcessMemory, IsSearchedInTheHeap) {
    for (const std::size_t before : {0U, 1U, 3U, 4096U, 100'000U}) {
        auto block = std::make_unique<std::uint8_t[]>(before + kSize);
        Plant(block.get() + before);
        EXPECT_EQ(Place(), "[heap]") << before;
        ClearMemory(block.get() + before, kSize);
        EXPECT_EQ(Place(), "nowhere") << before;
    }
}

// The allocator uses the first bytes of a freed block itself.
TEST_F(ProcessMemory, IsSearchedInFreedBlocks) {
    auto* const block = static_cast<std::uint8_t*>(std::malloc(16 + kSize));
    Plant(block + 16);
    std::free(block);
    EXPECT_EQ(Place(), "[heap]");
    auto* const next = static_cast<std::uint8_t*>(std::malloc(16 + kSize));  // the same block
    ClearMemory(next + 16, kSize);
    std::free(next);
    EXPECT_EQ(Place(), "nowhere");
}

TEST_F(ProcessMemory, IsSearchedOnTheStack) {
    std::uint8_t local[kSize];
    Plant(local);
    EXPECT_EQ(Place(), "[stack]");
    ClearMemory(local, kSize);
    EXPECT_EQ(Place(), "nowhere");
}

// Leaves the secret on the stack at least this many bytes below the caller's part.
template <std::size_t kDepth>
[[gnu::noinline]] void PlantBelow() {
    struct {
        std::uint8_t secret[kSize];
        std::uint8_t between[kDepth + 1000];  // later calls may overwrite some of it
    } local;
    Plant(local.secret);
}

[[gnu::noinline]] void ClearBelow() {
    std::uint8_t room[200'000];
    ClearMemory(room, sizeof room);
}

TEST_F(ProcessMemory, IsSearchedWhereACallHasReturned) {
    PlantBelow<1>();
    EXPECT_EQ(Place(), "[stack]");
    ClearBelow();
    EXPECT_EQ(Place(), "nowhere");
    PlantBelow<100'000>();
    EXPECT_EQ(Place(), "[stack]");
    ClearBelow();
    EXPECT_EQ(Place(), "nowhere");
}

TEST_F(ProcessMemory, IsSearchedOnTheStackOfAThread) {
    CallInThread(
        [] {
            std::uint8_t local[kSize];
            Plant(local);
        },
        [&] { EXPECT_EQ(Place(), "memory without a name"); });
}

TEST_F(ProcessMemory, IsSearchedToTheLastByteOfAMapping) {
    constexpr std::size_t kPage = 4096;
    void* const memory = mmap(nullptr, 3 * kPage, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    auto* const page = static_cast<std::uint8_t*>(memory) + kPage;
    ASSERT_EQ(mprotect(page, kPage, PROT_READ | PROT_WRITE), 0);
    for (std::uint8_t* const place : {page, page + kPage - kSize}) {
        Plant(place);
        EXPECT_EQ(Place(), "memory without a name");
        ClearMemory(place, kSize);
        EXPECT_EQ(Place(), "nowhere");
    }
    munmap(memory, 3 * kPage);
}

TEST_F(ProcessMemory, IsSearchedForParts) {
    Plant(gZero);
    ClearMemory(gZero, 8);
    ClearMemory(gZero + 16, kSize - 16);
    const Hits found = m_search.Found();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found.begin()->second, 1U);
    ++gZero[15];
    EXPECT_EQ(m_search.Found(), Hits());
}

}  // namespace
