// What the cipher call leaves on the stack: runs it in a thread on the test's own stack and
// searches that afterwards.
#include <string>

#include <gtest/gtest.h>

#include "platform/CommonCryptor.h"
#include "tests/support/Sanitizers.h"
#include "tests/support/StackAfter.h"

namespace {

struct Work {
    CCOperation op;
    CCOptions options;
    Bytes key;
    Bytes iv;
    Bytes data;  // in place
    std::size_t length;
};

Bytes StackAfterCipher(Work& work) {
    return StackAfter([&] {
        CCCrypt(work.op, kCCAlgorithmAES128, work.options, work.key.data(), work.key.size(),
                work.iv.data(), work.data.data(), work.length, work.data.data(), work.data.size(),
                &work.length);
    });
}

Bytes Xored(Bytes a, const Bytes& b) {
    for (std::size_t i = 0; i < a.size(); ++i) {
        a[i] = static_cast<std::uint8_t>(a[i] ^ b[i]);
    }
    return a;
}

TEST(CommonCryptorStack, HoldsNeitherKeyNorText) {
    if (kHasThreadSanitizer) {
        GTEST_SKIP() << "the thread sanitizer keeps copies of its own on the stack";
    }
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
            // Warm-up: the loader does more at a first call.
            Work rehearsal = work;
            StackAfterCipher(rehearsal);
            const std::string what =
                "options " + std::to_string(options) + ", length " + std::to_string(length);
            const Bytes encryptionStack = StackAfterCipher(work);
            const Bytes encrypted = work.data;
            work.op = kCCDecrypt;
            rehearsal = work;
            StackAfterCipher(rehearsal);
            const Bytes decryptionStack = StackAfterCipher(work);
            ASSERT_EQ(work.length, length) << what;

            // Before the chaining: what decrypting a block gives.
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
}

}  // namespace
