// The system's SHA-256 against the published examples.
#include <string>

#include <gtest/gtest.h>

#include "platform/Sha256.h"
#include "tests/support/Hex.h"
#include "tests/support/Sanitizers.h"
#include "tests/support/StackAfter.h"

namespace {

TEST(Sha256, GivesThePublishedDigests) {
    const struct {
        std::string bytes;
        const char* digest;
    } cases[] = {
        {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
        {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
        {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
         "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
        {std::string(1000000, 'a'),
         "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
    };
    for (const auto& c : cases) {
        std::uint8_t digest[kSha256Digest] = {};
        Sha256(c.bytes, digest);
        EXPECT_EQ(ToHex(Bytes(digest, digest + sizeof digest)), c.digest) << c.bytes.size();
    }
}

// The bytes may be those of a key.
TEST(Sha256, LeavesNothingOnTheStack) {
    if (kHasThreadSanitizer) {
        GTEST_SKIP() << "the thread sanitizer keeps copies of its own on the stack";
    }
    std::string bytes;
    for (int i = 0; bytes.size() < 96; ++i) {  // a block and a half, like a key's
        bytes += std::to_string(i * 7919);
    }
    std::uint8_t digest[kSha256Digest] = {};
    const Bytes stack = StackAfter([&] { Sha256(bytes, digest); });
    EXPECT_FALSE(Holds(stack, Bytes(bytes.begin(), bytes.end())));
}

}  // namespace
