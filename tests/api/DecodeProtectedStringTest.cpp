#include <algorithm>
#include <chrono>
#include <future>
#include <iterator>
#include <new>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "api/DecodeProtectedString.h"
#include "crypt/CCryptAES.h"
#include "protection/KeyMaterial.h"
#include "tests/support/Sanitizers.h"
#include "tests/support/Secrets.h"
#include "tests/support/StackAfter.h"
#include "tests/support/StoredForm.h"

using namespace std::string_literals;  // for texts that hold NUL bytes

namespace {

constexpr std::int32_t kUntouched = 4711;
constexpr char kFill = '\x5A';

struct Decoding {
    std::int32_t status;
    std::int32_t outputLength;
    std::string output;  // as long as the stored text
};

Decoding Fill(const std::string& stored) {
    Decoding result = {kUntouched, kUntouched, std::string(stored.size(), kFill)};
    DecodeProtectedString(&result.status, static_cast<std::int32_t>(stored.size()), stored.data(),
                          &result.outputLength, result.output.data());
    return result;
}

std::int32_t SizingStatus(const std::string& stored) {
    std::int32_t status = kUntouched;
    std::int32_t outputLength = kUntouched;
    DecodeProtectedString(&status, static_cast<std::int32_t>(stored.size()), stored.data(),
                          &outputLength, nullptr);
    EXPECT_EQ(outputLength, kUntouched) << "nothing was written";
    return status;
}

void ExpectRejected(const std::string& stored, const std::string& what) {
    EXPECT_NE(SizingStatus(stored), 0) << what;
    const Decoding result = Fill(stored);
    EXPECT_NE(result.status, 0) << what;
    EXPECT_EQ(result.outputLength, kUntouched) << what;
    EXPECT_EQ(result.output, std::string(stored.size(), kFill)) << what;
}

TEST(DecodeProtectedString, GivesTheTextBack) {
    const std::string texts[] = {
        "",
        "a",
        std::string(15, 'b'),
        std::string(16, 'c'),
        std::string(17, 'd'),
        std::string(64, 'e'),
        std::string(100'000, 'f'),
        "line one\nline two",
        "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80",
        "a\0b"s,
        "\0"s,
        std::string(16, '\x10'),  // looks like padding
        "\x01",
    };
    const Bytes key = DevelopmentKey();
    for (const std::string& text : texts) {
        const std::string stored = Stored(text, key);
        SCOPED_TRACE(std::to_string(text.size()) + " bytes");
        EXPECT_GE(stored.size(), 64U);
        EXPECT_EQ(stored.size() % 32, 0U);
        EXPECT_EQ(SizingStatus(stored), 0);
        const Decoding result = Fill(stored);
        EXPECT_EQ(result.status, 0);
        ASSERT_EQ(result.outputLength, static_cast<std::int32_t>(text.size()));
        EXPECT_LT(text.size(), stored.size());
        EXPECT_EQ(result.output, text + std::string(stored.size() - text.size(), kFill));
    }
}

TEST(DecodeProtectedString, RejectsWhatIsNotStored) {
    const std::string good = Stored("Open the file", DevelopmentKey());
    ASSERT_EQ(SizingStatus(good), 0);
    const auto with = [&](std::size_t at, const std::string& part) {
        return std::string(good).replace(at, part.size(), part);
    };
    std::string lower = good;
    for (char& digit : lower) {
        digit = digit >= 'A' ? static_cast<char>(digit - 'A' + 'a') : digit;
    }
    ASSERT_NE(lower, good);
    const struct {
        const char* what;
        std::string stored;
    } cases[] = {
        {"empty", ""},
        {"text", "Open the file"},
        {"one digit", "A"},
        {"one block", good.substr(0, 32)},
        {"one digit less", good.substr(0, good.size() - 1)},
        {"one digit more", good + "0"},
        {"a group more", good + "00000000"},
        {"a block more", good + std::string(32, '0')},
        {"twice", good + good},
        {"lower case", lower},
        {"a blank in front of a group", with(8, " ")},
        {"a tab", with(8, "\t")},
        {"a sign", with(0, "+")},
        {"a minus", with(16, "-")},
        {"0x", with(0, "0x")},
        {"0X", with(24, "0X")},
        {"G", with(5, "G")},
        {"g", with(5, "g")},
        {"/", with(5, "/")},
        {":", with(5, ":")},
        {"@", with(5, "@")},
        {"a NUL", with(5, "\0"s)},
        {"a high byte", with(5, "\xC1")},
        {"blanks", std::string(64, ' ')},
        {"zeros", std::string(64, '0')},
        {"many zeros", std::string(320, '0')},
    };
    for (const auto& c : cases) {
        ExpectRejected(c.stored, c.what);
    }
}

TEST(DecodeProtectedString, RejectsBadPaddingUnderAGoodTag) {
    // Each has the right tag for every length that could be meant.
    const Bytes key = DevelopmentKey();
    const struct {
        const char* what;
        std::string block;
    } cases[] = {
        {"0", "00000000000000000000000000000000"},
        {"17", "11111111111111111111111111111111"},
        {"255", "ffffffffffffffffffffffffffffffff"},
        {"2, the other 1", "00000000000000000000000000000102"},
        {"16, the first 15", "0f101010101010101010101010101010"},
    };
    for (const auto& c : cases) {
        const Bytes padded = FromHex(c.block);
        for (const std::size_t textLength :
             {std::size_t{0}, std::size_t{1}, std::size_t{13}, std::size_t{14}, std::size_t{15},
              std::size_t{16}, static_cast<std::size_t>(-1)}) {
            Bytes blocks = TagOf(textLength, padded, key);
            blocks.insert(blocks.end(), padded.begin(), padded.end());
            ExpectRejected(StoredBlocks(blocks, key), c.what);
        }
    }
    Bytes blocks = TagOf(0, Bytes(16, 16), key);
    blocks.insert(blocks.end(), 16, 16);
    EXPECT_EQ(SizingStatus(StoredBlocks(blocks, key)), 0) << "made this way, good padding decodes";
}

TEST(DecodeProtectedString, RejectsATagOfAnotherLength) {
    const Bytes key = DevelopmentKey();
    const Bytes padded(16, 16);  // an empty text
    for (const std::size_t textLength : {1U, 15U, 16U}) {
        Bytes blocks = TagOf(textLength, padded, key);
        blocks.insert(blocks.end(), padded.begin(), padded.end());
        ExpectRejected(StoredBlocks(blocks, key), "length " + std::to_string(textLength));
    }
}

TEST(DecodeProtectedString, RejectsATagWithAnyBitFlipped) {
    const Bytes key = DevelopmentKey();
    const Bytes padded(16, 16);
    for (std::size_t bit = 0; bit < 128; ++bit) {
        Bytes blocks = TagOf(0, padded, key);
        blocks[bit / 8] = static_cast<std::uint8_t>(blocks[bit / 8] ^ (1U << bit % 8));
        blocks.insert(blocks.end(), padded.begin(), padded.end());
        ExpectRejected(StoredBlocks(blocks, key), "bit " + std::to_string(bit));
    }
}

TEST(DecodeProtectedString, RejectsWhatAnotherKeyMade) {
    Bytes key = DevelopmentKey();
    for (std::uint32_t i = 0; i < 10'000; ++i) {
        // Near keys, one bit off, and distant ones.
        Bytes wrong = key;
        if (i < 256) {
            wrong[i / 8] = static_cast<std::uint8_t>(wrong[i / 8] ^ (1U << i % 8));
        } else {
            for (std::size_t byte = 0; byte < wrong.size(); ++byte) {
                wrong[byte] = static_cast<std::uint8_t>(wrong[byte] + i * (byte + 1) + (i >> 8U));
            }
            ASSERT_NE(wrong, key);
        }
        const std::string stored = Stored("Text " + std::to_string(i), wrong);
        ASSERT_NE(SizingStatus(stored), 0) << "key " << ToHex(wrong);
    }
}

TEST(DecodeProtectedString, RejectsEveryChangedDigit) {
    const Bytes key = DevelopmentKey();
    std::uint32_t pick = 1;
    int tried = 0;
    for (int entry = 0; entry < 200; ++entry) {
        const std::string text(static_cast<std::size_t>(entry),
                               static_cast<char>('a' + entry % 26));
        const std::string good = Stored(text, key);
        ASSERT_EQ(SizingStatus(good), 0);
        for (std::size_t at = 0; at < good.size(); ++at) {
            for (const char digit : "0123456789ABCDEF"s) {
                // Every change of some entries, a tenth of the rest.
                pick = pick * 1664525U + 1013904223U;
                if (digit == good[at] || (entry % 40 != 0 && pick >> 16U >= 65536U / 10)) {
                    continue;
                }
                std::string changed = good;
                changed[at] = digit;
                ASSERT_NE(SizingStatus(changed), 0)
                    << "entry " << entry << ", digit " << at << " made " << digit;
                ++tried;
            }
        }
    }
    EXPECT_GT(tried, 50'000);
}

// If "%x" stops at a bad byte, seven digits read like eight that begin with 0.
TEST(DecodeProtectedString, RejectsEveryOtherSpellingOfAGroup) {
    const Bytes key = DevelopmentKey();
    int tried = 0;
    for (int text = 0; text < 20; ++text) {
        const std::string good = Stored(std::to_string(text), key);
        for (std::size_t group = 0; group < good.size(); group += 8) {
            if (good[group] != '0') {
                continue;
            }
            for (int byte = 0; byte < 256; ++byte) {
                for (const bool isAtTheEnd : {true, false}) {
                    std::string other = good;
                    other.erase(group, 1);
                    other.insert(isAtTheEnd ? group + 7 : group, 1, static_cast<char>(byte));
                    if (other == good) {
                        continue;
                    }
                    ASSERT_NE(SizingStatus(other), 0) << "byte " << byte << " in " << other;
                    ++tried;
                }
            }
        }
    }
    EXPECT_GT(tried, 1000);
}

TEST(DecodeProtectedString, DoesNothingWithoutAStatus) {
    const std::string good = Stored("text", DevelopmentKey());
    std::int32_t outputLength = kUntouched;
    std::string output(good.size(), kFill);
    DecodeProtectedString(nullptr, static_cast<std::int32_t>(good.size()), good.data(),
                          &outputLength, output.data());
    EXPECT_EQ(outputLength, kUntouched);
    EXPECT_EQ(output, std::string(good.size(), kFill));
}

TEST(DecodeProtectedString, RejectsANegativeLength) {
    const std::string good = Stored("text", DevelopmentKey());
    for (const std::int32_t length : {-1, -64, INT32_MIN}) {
        std::int32_t status = 0;
        DecodeProtectedString(&status, length, good.data(), nullptr, nullptr);
        EXPECT_NE(status, 0) << length;
    }
}

TEST(DecodeProtectedString, RunsUnderItsLock) {
    const std::string good = Stored("text", DevelopmentKey());
    std::unique_lock<std::recursive_mutex> lock(gDecodeMutex);
    EXPECT_EQ(SizingStatus(good), 0) << "the thread that holds the lock may decode";
    auto waiting = std::async(std::launch::async, [&] { return SizingStatus(good); });
    auto waitingToo = std::async(std::launch::async, [] { return SizingStatus("not stored"); });
    EXPECT_EQ(waiting.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
    EXPECT_EQ(waitingToo.wait_for(std::chrono::milliseconds(0)), std::future_status::timeout);
    lock.unlock();
    EXPECT_EQ(waiting.get(), 0);
    EXPECT_NE(waitingToo.get(), 0);

    // The lock is free again after a failure too.
    EXPECT_NE(SizingStatus("no"), 0);
    EXPECT_EQ(std::async(std::launch::async, [&] { return SizingStatus(good); }).get(), 0);
}

// The stack may be overwritten before the test looks; this memory is not. FreedMemory searches for
// the keys made from it.
TEST(KeyMaterial, IsClearedAtItsEnd) {
    alignas(KeyMaterial) static std::uint8_t memory[sizeof(KeyMaterial)];
    const auto* const material = new (memory) KeyMaterial;
    const auto isZero = [](std::uint8_t byte) { return byte == 0; };
    EXPECT_FALSE(std::all_of(std::begin(memory), std::end(memory), isZero));
    material->~KeyMaterial();
    EXPECT_TRUE(std::all_of(std::begin(memory), std::end(memory), isZero));
}

TEST(DecodeProtectedString, LeavesNeitherKeysNorTextOnTheStack) {
    if (kHasThreadSanitizer) {
        GTEST_SKIP() << "the thread sanitizer keeps copies of its own on the stack";
    }
    const Bytes material = DevelopmentKey();
    const std::string text = "a text that must not be found on the stack";
    const std::string stored = Stored(text, material);
    Decoding result = Fill(stored);  // warm-up: the loader does more at a first call
    const Bytes stack = StackAfter([&] {
        DecodeProtectedString(&result.status, static_cast<std::int32_t>(stored.size()),
                              stored.data(), &result.outputLength, result.output.data());
        getpgrp();  // to resolve it, the loader saves the registers to the stack
    });
    EXPECT_EQ(result.status, 0);
    for (const auto& [name, secret] : SecretsOf(material, text)) {
        EXPECT_FALSE(Holds(stack, secret)) << name;
    }
}

TEST(DecodeProtectedString, DecodesOnManyThreadsAtOnce) {
    const Bytes key = DevelopmentKey();
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([&key, t] {
            const std::string text = "text of thread " + std::to_string(t);
            const std::string stored = Stored(text, key);
            for (int i = 0; i < 200; ++i) {
                EXPECT_EQ(SizingStatus(stored), 0);
                const Decoding result = Fill(stored);
                EXPECT_EQ(result.output.substr(0, text.size()), text);
                EXPECT_NE(SizingStatus(stored.substr(32)), 0);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}  // namespace
