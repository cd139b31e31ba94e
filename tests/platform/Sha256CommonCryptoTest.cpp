// The macOS source, over a stand-in that records the system's call.
#include <algorithm>
#include <iterator>
#include <string>

#include <CommonCrypto/CommonDigest.h>
#include <gtest/gtest.h>

#include "platform/Sha256.h"

namespace {

std::string gHashed;  // what the system was given to hash

TEST(Sha256CommonCrypto, HashesTheBytesInOneCall) {
    const std::string bytes("a\0b", 3);
    std::uint8_t digest[kSha256Digest] = {};
    Sha256(bytes, digest);
    EXPECT_EQ(gHashed, "[" + bytes + "]");
    for (std::size_t i = 0; i < sizeof digest; ++i) {
        EXPECT_EQ(digest[i], 100 + i);
    }
}

}  // namespace

unsigned char* CC_SHA256(const void* data, CC_LONG length, unsigned char* digest) {
    gHashed += '[' + std::string(static_cast<const char*>(data), length) + ']';
    for (unsigned char i = 0; i < 32; ++i) {
        digest[i] = static_cast<unsigned char>(100 + i);
    }
    return digest;
}
