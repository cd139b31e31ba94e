// What the cipher call leaves behind on the stack: runs it in a thread on a stack of the test's own
// and looks through that afterwards.
#include <algorithm>
#include <cstring>
#include <pthread.h>
#include <string>
#include <sys/mman.h>

#include <gtest/gtest.h>

#include "platform/CommonCryptor.h"
#include "tests/support/StoredForm.h"

namespace {

constexpr std::size_t kStackSize = std::size_t{8} << 20U;  // sanitizers want much of it
constexpr std::size_t kWindow = 8;                         // so many bytes in a row are no accident

struct Work {
    CCOperation op;
    CCOptions options;
    Bytes key;
    Bytes iv;
    Bytes data;  // in place
    std::size_t length;
};

void* RunCipher(void* argument) {
    auto& work = *static_cast<Work*>(argument);
    CCCrypt(work.op, kCCAlgorithmAES128, work.options, work.key.data(), work.key.size(),
            work.iv.data(), work.data.data(), work.length, work.data.data(), work.data.size(),
            &work.length);
    return nullptr;
}

bool Holds(const Bytes& stack, const Bytes& secret) {
    for (std::size_t i = 0; i + kWindow <= secret.size(); i += kWindow) {
        if (memmem(stack.data(), stack.size(), secret.data() + i, kWindow) != nullptr) {
            return true;
        }
    }
    return false;
}

// The stack as the call leaves it.
Bytes StackAfter(Work& work) {
    void* const memory = mmap(nullptr, kStackSize, PROT_READ | PROT_WRITE,
                              MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstack(&attributes, memory, kStackSize);
    pthread_t thread = {};
    EXPECT_EQ(pthread_create(&thread, &attributes, RunCipher, &work), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    const auto* const bytes = static_cast<const std::uint8_t*>(memory);
    const auto* const lowest =
        std::find_if(bytes, bytes + kStackSize, [](std::uint8_t byte) { return byte != 0; });
    Bytes stack(lowest, bytes + kStackSize);
    munmap(memory, kStackSize);
    return stack;
}

Bytes Xored(Bytes a, const Bytes& b) {
    for (std::size_t i = 0; i < a.size(); ++i) {
        a[i] = static_cast<std::uint8_t>(a[i] ^ b[i]);
    }
    return a;
}

#ifdef __has_feature
#if __has_feature(thread_sanitizer)
#define __SANITIZE_THREAD__  // as g++ says it; NOLINT(bugprone-reserved-identifier)
#endif
#endif

TEST(CommonCryptorStack, HoldsNeitherKeyNorText) {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "the thread sanitizer keeps copies of its own on the stack";
#endif
    Bytes key(32);
    Bytes iv(16);
    Bytes text(1024);
    std::uint32_t state = 1;
    for (Bytes* bytes : {&key, &iv, &text}) {
        for (std::uint8_t& byte : *bytes) {
            state = state * 1664525U + 1013904223U;
            byte = static_cast<std::uint8_t>(state >> 24U);
        }
    }
    for (const CCOptions options : {0U, 1U, 2U, 3U}) {
        for (const std::size_t length : {16U, 64U, 1008U}) {
            Work work = {kCCEncrypt,
                         options,
                         key,
                         iv,
                         Bytes(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(length)),
                         length};
            work.data.resize(length + 16);
            // Once before, for what the loader does at the first call.
            Work rehearsal = work;
            StackAfter(rehearsal);
            const std::string what =
                "options " + std::to_string(options) + ", length " + std::to_string(length);
            const Bytes encryptionStack = StackAfter(work);
            const Bytes encrypted = work.data;
            work.op = kCCDecrypt;
            rehearsal = work;
            StackAfter(rehearsal);
            const Bytes decryptionStack = StackAfter(work);
            ASSERT_EQ(work.length, length) << what;

            // Before the chaining: what decrypting a block gives first.
            Bytes chained = iv;
            chained.insert(chained.end(), encrypted.begin(), encrypted.end());
            const Bytes plain(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(length));
            const Bytes unchained = Xored(plain, chained);
            for (const Bytes* stack : {&encryptionStack, &decryptionStack}) {
                const char* const when = stack == &encryptionStack ? "encrypting" : "decrypting";
                EXPECT_FALSE(Holds(*stack, key)) << what << ", the key after " << when;
                EXPECT_FALSE(Holds(*stack, plain)) << what << ", the text after " << when;
                EXPECT_FALSE(Holds(*stack, unchained)) << what << ", the text after " << when;
            }
        }
    }
    Work work = {kCCEncrypt, 0, key, iv, text, 1024};
    const Bytes stack = StackAfter(work);
    EXPECT_TRUE(std::any_of(stack.begin(), stack.end(), [](std::uint8_t byte) {
        return byte != 0;
    })) << "the thread ran on this stack";
}

}  // namespace
