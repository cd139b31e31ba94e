// The same random messages through our cipher call and through OpenSSL's.
#include <algorithm>
#include <memory>
#include <openssl/evp.h>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "platform/CommonCryptor.h"
#include "tests/support/Hex.h"

namespace {

constexpr int kMessages = 100'000;
constexpr std::size_t kLongest = 4096;

const EVP_CIPHER* CipherOf(std::size_t keyLength, bool isEcb) {
    switch (keyLength) {
        case 16:
            return isEcb ? EVP_aes_128_ecb() : EVP_aes_128_cbc();
        case 24:
            return isEcb ? EVP_aes_192_ecb() : EVP_aes_192_cbc();
        default:
            return isEcb ? EVP_aes_256_ecb() : EVP_aes_256_cbc();
    }
}

struct Parameters {
    CCOperation op;
    CCOptions options;
    Bytes key;
    Bytes iv;
};

// What OpenSSL makes of a message; false where it refuses it.
class Peer {
public:
    bool Crypt(const Parameters& p, const Bytes& in, Bytes& out) const {
        EVP_CIPHER_CTX* const context = m_context.get();
        const bool isEcb = (p.options & kCCOptionECBMode) != 0;
        EXPECT_EQ(EVP_CipherInit_ex(context, CipherOf(p.key.size(), isEcb), nullptr, p.key.data(),
                                    p.iv.data(), p.op == kCCEncrypt ? 1 : 0),
                  1);
        EVP_CIPHER_CTX_set_padding(context, (p.options & kCCOptionPKCS7Padding) != 0 ? 1 : 0);
        out.resize(in.size() + 32);
        int length = 0;
        int last = 0;
        EXPECT_EQ(
            EVP_CipherUpdate(context, out.data(), &length, in.data(), static_cast<int>(in.size())),
            1);
        const bool isGood = EVP_CipherFinal_ex(context, out.data() + length, &last) == 1;
        out.resize(static_cast<std::size_t>(length) + static_cast<std::size_t>(isGood ? last : 0));
        return isGood;
    }

private:
    std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> m_context{EVP_CIPHER_CTX_new(),
                                                                              EVP_CIPHER_CTX_free};
};

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
    const Peer peer;
    int refused = 0;
    for (int i = 0; i < kMessages; ++i) {
        const std::size_t lengths[] = {kCCKeySizeAES128, kCCKeySizeAES192, kCCKeySizeAES256};
        const Parameters p = {random() % 2 == 0 ? kCCEncrypt : kCCDecrypt,
                              static_cast<CCOptions>(random() % 4),
                              randomBytes(lengths[random() % 3]), randomBytes(16)};
        const bool isPadded = (p.options & kCCOptionPKCS7Padding) != 0;
        const std::size_t length = random() % (kLongest + 1);
        const auto from = pool.begin() + static_cast<std::ptrdiff_t>(random() % kLongest);
        Bytes in(from, from + static_cast<std::ptrdiff_t>(length));

        // Most ciphertexts are real ones: random bytes hardly ever have good padding.
        if (p.op == kCCDecrypt && random() % 4 != 0) {
            Parameters reverse = p;
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
        // Of a refused message OpenSSL holds back the last block, which may be whole.
        ASSERT_GE(moved, expected.size()) << what;
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), buffer.begin())) << what;
    }
    EXPECT_GT(refused, kMessages / 20);
    EXPECT_LT(refused, kMessages / 2);
}

}  // namespace
