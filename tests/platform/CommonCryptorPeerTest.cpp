// The same random messages through our cipher call and through OpenSSL's.
#include <algorithm>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "platform/CommonCryptor.h"
#include "tests/support/CipherPeer.h"

namespace {

constexpr int kMessages = 100'000;
constexpr std::size_t kLongest = 4096;

TEST(CommonCryptorPeer, GivesTheSameBytes) {
    std::mt19937 random(1);  // NOLINT: the same messages at every run
    const auto randomBytes = [&](std::size_t length) {
        Bytes bytes(length);
        for (std::uint8_t& byte : bytes) {
            byte = static_cast<std::uint8_t>(random());
        }
        return bytes;
    };
    const Bytes pool = randomBytes(2 * kLongest);
    const CipherPeer peer;
    int refused = 0;
    for (int i = 0; i < kMessages; ++i) {
        const std::size_t lengths[] = {kCCKeySizeAES128, kCCKeySizeAES192, kCCKeySizeAES256};
        const CipherPeer::Parameters p = {random() % 2 == 0 ? kCCEncrypt : kCCDecrypt,
                                          static_cast<CCOptions>(random() % 4),
                                          randomBytes(lengths[random() % 3]), randomBytes(16)};
        const bool isPadded = (p.options & kCCOptionPKCS7Padding) != 0;
        const std::size_t length = random() % (kLongest + 1);
        const auto from = pool.begin() + static_cast<std::ptrdiff_t>(random() % kLongest);
        Bytes in(from, from + static_cast<std::ptrdiff_t>(length));

        // Most ciphertexts are real ones: random bytes almost never have good padding.
        if (p.op == kCCDecrypt && random() % 4 != 0) {
            CipherPeer::Parameters reverse = p;
            reverse.op = kCCEncrypt;
            if (!isPadded) {
                in.resize(length / 16 * 16);
            }
            Bytes encrypted;
            ASSERT_TRUE(peer.Crypt(reverse, in, encrypted));
            in = encrypted;
        }

        Bytes expected;
        const bool isGood = peer.Crypt(p, in, expected);
        Bytes buffer = in;
        buffer.resize(in.size() + 16);
        std::size_t moved = in.size();
        const CCCryptorStatus status =
            CCCrypt(p.op, kCCAlgorithmAES128, p.options, p.key.data(), p.key.size(), p.iv.data(),
                    buffer.data(), moved, buffer.data(), buffer.size(), &moved);
        const std::string what = "message " + std::to_string(i) + " of " +
                                 std::to_string(in.size()) + " bytes, operation " +
                                 std::to_string(p.op) + ", options " + std::to_string(p.options) +
                                 ", key of " + std::to_string(p.key.size());
        ASSERT_EQ(status == kCCSuccess, isGood) << what;
        if (isGood) {
            ASSERT_EQ(moved, expected.size()) << what;
        } else {
            ++refused;
        }
        // OpenSSL holds back the last block of a refused message, which may be a whole one.
        ASSERT_GE(moved, expected.size()) << what;
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), buffer.begin())) << what;
    }
    EXPECT_GT(refused, kMessages / 20);
    EXPECT_LT(refused, kMessages / 2);
}

}  // namespace
