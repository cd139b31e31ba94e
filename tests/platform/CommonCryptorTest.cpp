// Our own cipher call follows each rule of the system's.
#include <algorithm>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/CommonCryptor.h"
#include "tests/support/Hex.h"

namespace {

constexpr std::size_t kUntouched = 9999;
constexpr std::uint8_t kFill = 0xEE;

const Bytes kKey = CountingBytes(16);
const Bytes kIV = FromHex("0f0e0d0c0b0a09080706050403020100");

struct Result {
    CCCryptorStatus status;
    std::size_t moved;
    Bytes buffer;
};

// Writes to a buffer of available bytes, filled with kFill.
Result Crypt(CCOperation op, CCOptions options, const Bytes& in, std::size_t available,
             const Bytes& key = kKey, const Bytes* iv = &kIV) {
    Result result = {0, kUntouched, Bytes(available, kFill)};
    result.status = CCCrypt(op, kCCAlgorithmAES128, options, key.data(), key.size(),
                            iv == nullptr ? nullptr : iv->data(), in.data(), in.size(),
                            result.buffer.data(), available, &result.moved);
    return result;
}

// Works in a buffer of capacity bytes, filled with kFill after the input.
Result CryptInPlace(CCOperation op, CCOptions options, const Bytes& in, std::size_t capacity) {
    Result result = {0, in.size(), in};
    result.buffer.resize(capacity, kFill);
    // The length is read before the moved value overwrites it.
    result.status =
        CCCrypt(op, kCCAlgorithmAES128, options, kKey.data(), kKey.size(), kIV.data(),
                result.buffer.data(), result.moved, result.buffer.data(), capacity, &result.moved);
    return result;
}

Bytes Encrypted(const Bytes& in, CCOptions options) {
    Result result = Crypt(kCCEncrypt, options, in, in.size() + 16);
    EXPECT_EQ(result.status, kCCSuccess);
    result.buffer.resize(result.moved);
    return result.buffer;
}

// The first n bytes of head, followed by those of rest.
Bytes Spliced(const Bytes& head, std::size_t n, Bytes rest) {
    std::copy_n(head.begin(), n, rest.begin());
    return rest;
}

const CCOptions kModes[] = {0, kCCOptionECBMode};

TEST(CommonCryptor, HasTheSystemsValues) {
    EXPECT_EQ(kCCSuccess, 0);
    EXPECT_EQ(kCCParamError, -4300);
    EXPECT_EQ(kCCBufferTooSmall, -4301);
    EXPECT_EQ(kCCMemoryFailure, -4302);
    EXPECT_EQ(kCCAlignmentError, -4303);
    EXPECT_EQ(kCCDecodeError, -4304);
    EXPECT_EQ(kCCUnimplemented, -4305);
    EXPECT_EQ(kCCEncrypt, 0U);
    EXPECT_EQ(kCCDecrypt, 1U);
    EXPECT_EQ(kCCAlgorithmAES128, 0U);
    EXPECT_EQ(kCCOptionPKCS7Padding, 1U);
    EXPECT_EQ(kCCOptionECBMode, 2U);
}

TEST(CommonCryptor, GivesTheKnownAnswers) {
    const Result withIV = Crypt(kCCEncrypt, kCCOptionPKCS7Padding, {}, 16);
    EXPECT_EQ(withIV.status, kCCSuccess);
    EXPECT_EQ(ToHex(withIV.buffer), "efddc425a6fa0c5f25e444092eb0f503");
    const Result withNone = Crypt(kCCEncrypt, kCCOptionPKCS7Padding, {}, 16, kKey, nullptr);
    EXPECT_EQ(withNone.status, kCCSuccess);
    EXPECT_EQ(ToHex(withNone.buffer), "954f64f2e4e86e9eee82d20216684899");
}

TEST(CommonCryptor, TakesANullIVAsZeroBytes) {
    const Bytes zero(16, 0);
    const Bytes text = CountingBytes(32);
    const Result null = Crypt(kCCEncrypt, 0, text, 32, kKey, nullptr);
    EXPECT_EQ(null.buffer, Crypt(kCCEncrypt, 0, text, 32, kKey, &zero).buffer);
    EXPECT_EQ(Crypt(kCCDecrypt, 0, null.buffer, 32, kKey, nullptr).buffer, text);
}

TEST(CommonCryptor, NeverReadsTheIVInEcbMode) {
    const auto* const nowhere = reinterpret_cast<const void*>(1);
    const Bytes text = CountingBytes(32);
    Bytes out(32, kFill);
    std::size_t moved = 0;
    EXPECT_EQ(CCCrypt(kCCEncrypt, kCCAlgorithmAES128, kCCOptionECBMode, kKey.data(), 16, nowhere,
                      text.data(), 32, out.data(), 32, &moved),
              kCCSuccess);
    EXPECT_EQ(out, Crypt(kCCEncrypt, kCCOptionECBMode, text, 32).buffer);
}

TEST(CommonCryptor, RefusesWrongParametersAndTouchesNothing) {
    const Bytes key = CountingBytes(40);
    const struct {
        const char* what;
        CCOperation op;
        CCAlgorithm alg;
        const void* key;
        std::size_t keyLength;
    } cases[] = {
        {"key null", kCCEncrypt, 0, nullptr, 16},
        {"operation 2", 2, 0, key.data(), 16},
        {"operation -1", ~0U, 0, key.data(), 16},
        {"algorithm 1", kCCEncrypt, 1, key.data(), 16},
        {"algorithm 99", kCCEncrypt, 99, key.data(), 16},
        {"key of 0", kCCEncrypt, 0, key.data(), 0},
        {"key of 15", kCCEncrypt, 0, key.data(), 15},
        {"key of 17", kCCDecrypt, 0, key.data(), 17},
        {"key of 40", kCCEncrypt, 0, key.data(), 40},
    };
    for (const auto& c : cases) {
        for (const std::size_t available : {0U, 32U}) {  // checked before the room
            Bytes out(32, kFill);
            std::size_t moved = kUntouched;
            EXPECT_EQ(CCCrypt(c.op, c.alg, 0, c.key, c.keyLength, kIV.data(), key.data(), 32,
                              out.data(), available, &moved),
                      kCCParamError)
                << c.what;
            EXPECT_EQ(moved, kUntouched) << c.what;
            EXPECT_EQ(out, Bytes(32, kFill)) << c.what;
        }
    }
}

TEST(CommonCryptor, WantsRoomForTheWholeResult) {
    const struct {
        CCOperation op;
        CCOptions options;
        std::size_t length;
        std::size_t needed;
    } cases[] = {
        {kCCEncrypt, 0, 16, 16},
        {kCCEncrypt, 0, 31, 16},
        {kCCEncrypt, 0, 32, 32},
        {kCCDecrypt, 0, 32, 32},
        {kCCDecrypt, 0, 47, 32},
        {kCCEncrypt, kCCOptionPKCS7Padding, 0, 16},
        {kCCEncrypt, kCCOptionPKCS7Padding, 15, 16},
        {kCCEncrypt, kCCOptionPKCS7Padding, 16, 32},
        {kCCEncrypt, kCCOptionPKCS7Padding, 33, 48},
        {kCCDecrypt, kCCOptionPKCS7Padding, 16, 16},
        {kCCDecrypt, kCCOptionPKCS7Padding, 32, 32},
        {kCCDecrypt, kCCOptionPKCS7Padding, 33, 33},
    };
    for (const auto& c : cases) {
        for (const CCOptions mode : kModes) {
            const std::string what = "operation " + std::to_string(c.op) + ", options " +
                                     std::to_string(c.options | mode) + ", length " +
                                     std::to_string(c.length);
            const Bytes in = CountingBytes(c.length);
            const Result tooSmall = Crypt(c.op, c.options | mode, in, c.needed - 1);
            EXPECT_EQ(tooSmall.status, kCCBufferTooSmall) << what;
            EXPECT_EQ(tooSmall.moved, c.needed) << what;
            EXPECT_EQ(tooSmall.buffer, Bytes(c.needed - 1, kFill)) << what;
            EXPECT_NE(Crypt(c.op, c.options | mode, in, c.needed).status, kCCBufferTooSmall)
                << what;
        }
    }
}

TEST(CommonCryptor, ProcessesWholeBlocksWithoutPadding) {
    for (const CCOptions mode : kModes) {
        for (const std::size_t length : {0U, 16U, 32U, 4096U}) {
            const Bytes text = CountingBytes(length);
            const Result encrypted = Crypt(kCCEncrypt, mode, text, length);
            EXPECT_EQ(encrypted.status, kCCSuccess) << length;
            EXPECT_EQ(encrypted.moved, length);
            const Result decrypted = Crypt(kCCDecrypt, mode, encrypted.buffer, length + 5);
            EXPECT_EQ(decrypted.status, kCCSuccess) << length;
            EXPECT_EQ(decrypted.moved, length);
            EXPECT_EQ(decrypted.buffer, Spliced(text, length, Bytes(length + 5, kFill)));
        }
    }
}

TEST(CommonCryptor, LeavesAnIncompleteBlockWithoutPaddingAlone) {
    for (const CCOptions mode : kModes) {
        for (const CCOperation op : {kCCEncrypt, kCCDecrypt}) {
            for (const std::size_t length : {1U, 15U, 17U, 47U}) {
                const std::size_t whole = length / 16 * 16;
                const Bytes in = CountingBytes(length);
                const Bytes blocks = Crypt(op, mode, CountingBytes(whole), whole).buffer;
                const Result apart = Crypt(op, mode, in, length);
                EXPECT_EQ(apart.status, kCCAlignmentError) << length;
                EXPECT_EQ(apart.moved, whole);
                EXPECT_EQ(apart.buffer, Spliced(blocks, whole, Bytes(length, kFill))) << length;
                const Result inPlace = CryptInPlace(op, mode, in, length);
                EXPECT_EQ(inPlace.status, kCCAlignmentError) << length;
                EXPECT_EQ(inPlace.moved, whole);
                EXPECT_EQ(inPlace.buffer, Spliced(blocks, whole, in)) << length;
            }
        }
    }
}

TEST(CommonCryptor, PadsAndUnpadsAnyLength) {
    for (const CCOptions mode : kModes) {
        const CCOptions options = kCCOptionPKCS7Padding | mode;
        for (std::size_t length = 0; length <= 64; ++length) {
            const Bytes text = CountingBytes(length, 100);
            const std::size_t padded = length / 16 * 16 + 16;
            const Result encrypted = Crypt(kCCEncrypt, options, text, padded);
            EXPECT_EQ(encrypted.status, kCCSuccess) << length;
            EXPECT_EQ(encrypted.moved, padded) << length;

            // The padding is PKCS#7, as decrypting without it shows.
            Bytes withPadding = text;
            withPadding.resize(padded, static_cast<std::uint8_t>(padded - length));
            EXPECT_EQ(Crypt(kCCDecrypt, mode, encrypted.buffer, padded).buffer, withPadding);

            const Result decrypted = Crypt(kCCDecrypt, options, encrypted.buffer, padded);
            EXPECT_EQ(decrypted.status, kCCSuccess) << length;
            EXPECT_EQ(decrypted.moved, length);
            EXPECT_EQ(decrypted.buffer, Spliced(text, length, Bytes(padded, kFill))) << length;

            const Result there = CryptInPlace(kCCEncrypt, options, text, padded);
            EXPECT_EQ(there.status, kCCSuccess) << length;
            EXPECT_EQ(there.buffer, encrypted.buffer) << length;
            const Result back = CryptInPlace(kCCDecrypt, options, there.buffer, padded);
            EXPECT_EQ(back.status, kCCSuccess) << length;
            EXPECT_EQ(back.moved, length);
            EXPECT_EQ(back.buffer, Spliced(text, length, there.buffer))
                << length << ": the padding's bytes stay as they were";
        }
    }
}

TEST(CommonCryptor, FindsBadPadding) {
    // The last block before encryption.
    const struct {
        const char* what;
        std::string block;
    } cases[] = {
        {"last byte 0", "00000000000000000000000000000000"},
        {"last byte 17", "11111111111111111111111111111111"},
        {"last byte 255", "ffffffffffffffffffffffffffffffff"},
        {"2, the other 1", "00000000000000000000000000000102"},
        {"16, the first 15", "0f101010101010101010101010101010"},
        {"3, the first 2", "00000000000000000000000000020303"},
    };
    for (const auto& c : cases) {
        for (const CCOptions mode : kModes) {
            for (const std::size_t before : {0U, 16U, 32U}) {
                Bytes text = CountingBytes(before);
                const Bytes block = FromHex(c.block);
                text.insert(text.end(), block.begin(), block.end());
                const Bytes in = Encrypted(text, mode);
                const Result apart = Crypt(kCCDecrypt, kCCOptionPKCS7Padding | mode, in, in.size());
                EXPECT_EQ(apart.status, kCCDecodeError) << c.what;
                EXPECT_EQ(apart.moved, before) << c.what;
                EXPECT_EQ(apart.buffer, Spliced(text, before, Bytes(in.size(), kFill))) << c.what;
                const Result inPlace =
                    CryptInPlace(kCCDecrypt, kCCOptionPKCS7Padding | mode, in, in.size());
                EXPECT_EQ(inPlace.status, kCCDecodeError) << c.what;
                EXPECT_EQ(inPlace.moved, before) << c.what;
                EXPECT_EQ(inPlace.buffer, Spliced(text, before, in)) << c.what;
            }
        }
    }
}

TEST(CommonCryptor, WantsWholeBlocksToUnpad) {
    for (const CCOptions mode : kModes) {
        const CCOptions options = kCCOptionPKCS7Padding | mode;
        const Result none = Crypt(kCCDecrypt, options, {}, 16);
        EXPECT_EQ(none.status, kCCAlignmentError);
        EXPECT_EQ(none.moved, 0U);
        EXPECT_EQ(none.buffer, Bytes(16, kFill));

        for (const std::size_t length : {1U, 15U, 17U, 33U}) {
            const std::size_t whole = length / 16 * 16;
            const Bytes in = CountingBytes(length);
            const Bytes blocks = Crypt(kCCDecrypt, mode, CountingBytes(whole), whole).buffer;
            const Result result = Crypt(kCCDecrypt, options, in, length);
            EXPECT_EQ(result.status, kCCAlignmentError) << length;
            EXPECT_EQ(result.moved, whole) << length;
            EXPECT_EQ(result.buffer, Spliced(blocks, whole, Bytes(length, kFill))) << length;
            const Result inPlace = CryptInPlace(kCCDecrypt, options, in, length);
            EXPECT_EQ(inPlace.status, kCCAlignmentError) << length;
            EXPECT_EQ(inPlace.moved, whole) << length;
            EXPECT_EQ(inPlace.buffer, Spliced(blocks, whole, in)) << length;
        }
    }
}

TEST(CommonCryptor, RefusesALengthThatOverflowsWithItsPadding) {
    std::uint8_t byte = 0;
    for (const std::size_t less : {0U, 1U, 15U}) {
        std::size_t moved = 0;
        const std::size_t length = static_cast<std::size_t>(-1) - less;
        EXPECT_EQ(CCCrypt(kCCEncrypt, kCCAlgorithmAES128, kCCOptionPKCS7Padding, kKey.data(), 16,
                          nullptr, &byte, length, &byte, static_cast<std::size_t>(-1), &moved),
                  kCCBufferTooSmall);
    }
}

TEST(CommonCryptor, MayBeCalledFromManyThreadsAtOnce) {
    std::vector<std::thread> threads;
    for (unsigned t = 0; t < 8; ++t) {
        threads.emplace_back([t] {
            const Bytes key = CountingBytes(32, t);
            for (std::size_t length = 0; length < 200; ++length) {
                const Bytes text = CountingBytes(length, t);
                Result encrypted = Crypt(kCCEncrypt, kCCOptionPKCS7Padding, text, length + 16, key);
                encrypted.buffer.resize(encrypted.moved);
                Result decrypted = Crypt(kCCDecrypt, kCCOptionPKCS7Padding, encrypted.buffer,
                                         encrypted.moved, key);
                decrypted.buffer.resize(decrypted.moved);
                EXPECT_EQ(decrypted.buffer, text);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}  // namespace
