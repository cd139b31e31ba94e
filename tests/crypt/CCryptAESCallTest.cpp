// What CCryptAES passes to the cipher call and does with its answers, seen by a stand-in for the
// call.
#include <cstring>
#include <mutex>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "crypt/CCryptAES.h"
#include "crypt/CCryptLibException.h"
#include "tests/support/Hex.h"

namespace {

// The last call, and how to answer it.
struct {
    int calls;
    CCOperation op;
    CCAlgorithm alg;
    CCOptions options;
    std::string key;
    std::string iv;
    const void* dataIn;
    std::string data;
    const void* dataOut;
    std::size_t dataOutAvailable;
    const std::size_t* dataOutMoved;
    bool isLocked;

    CCCryptorStatus status;
    std::size_t moved;
} gCall;

const Bytes kKey = CountingBytes(32);
const Bytes kIV = CountingBytes(16, 50);

void Configure(CCryptAES& aes, std::uint32_t mode, std::uint32_t padding, std::uint32_t keyLength) {
    aes.SetKey(kKey.data(), keyLength);
    aes.SetIV(kIV.data(), 16);
    aes.SetMode(mode);
    aes.SetPadding(padding);
}

TEST(CCryptAESCall, GetsTheObjectsParametersAndTheCallersBuffer) {
    const struct {
        std::uint32_t mode;
        std::uint32_t padding;
        std::uint32_t keyLength;
        CCOptions options;
    } cases[] = {
        {CRYPT_MODE_ECB, CRYPT_PADDING_NONE, 16, kCCOptionECBMode},
        {CRYPT_MODE_ECB, CRYPT_PADDING_PKCS7, 24, kCCOptionECBMode | kCCOptionPKCS7Padding},
        {CRYPT_MODE_CBC, CRYPT_PADDING_NONE, 32, 0},
        {CRYPT_MODE_CBC, CRYPT_PADDING_PKCS7, 16, kCCOptionPKCS7Padding},
    };
    for (const auto& c : cases) {
        for (const CCOperation op : {kCCEncrypt, kCCDecrypt}) {
            gCall = {};
            gCall.moved = 7;
            CCryptAES aes;
            Configure(aes, c.mode, c.padding, c.keyLength);
            Bytes data = CountingBytes(64);
            std::size_t n = 40;
            op == kCCEncrypt ? aes.Encrypt(data.data(), &n, 64) : aes.Decrypt(data.data(), &n, 64);

            SCOPED_TRACE("mode " + std::to_string(c.mode) + ", padding " +
                         std::to_string(c.padding) + ", operation " + std::to_string(op));
            EXPECT_EQ(gCall.calls, 1);
            EXPECT_EQ(gCall.op, op);
            EXPECT_EQ(gCall.alg, 0U);
            EXPECT_EQ(gCall.options, c.options);
            EXPECT_EQ(gCall.key, std::string(kKey.begin(), kKey.begin() + c.keyLength));
            EXPECT_EQ(gCall.iv, std::string(kIV.begin(), kIV.end())) << "in ECB mode too";
            EXPECT_EQ(gCall.dataIn, data.data());
            EXPECT_EQ(gCall.data, std::string(data.begin(), data.begin() + 40));
            EXPECT_EQ(gCall.dataOut, data.data()) << "in place";
            EXPECT_EQ(gCall.dataOutAvailable, 64U);
            EXPECT_EQ(gCall.dataOutMoved, &n);
            EXPECT_EQ(n, 7U);
            EXPECT_TRUE(gCall.isLocked);
        }
    }
}

TEST(CCryptAESCall, MeasuresOnACopyWithRoomForTheIVsLengthMore) {
    CCryptAES aes;
    Configure(aes, CRYPT_MODE_CBC, CRYPT_PADDING_NONE, 16);
    const Bytes data = CountingBytes(40);
    for (const CCOperation op : {kCCEncrypt, kCCDecrypt}) {
        gCall = {};
        gCall.moved = 77;
        const std::size_t size = op == kCCEncrypt ? aes.GetEncryptedSize(data.data(), 40)
                                                  : aes.GetDecryptedSize(data.data(), 40);
        EXPECT_EQ(size, 77U);
        EXPECT_EQ(gCall.op, op);
        EXPECT_EQ(gCall.data, std::string(data.begin(), data.end()));
        EXPECT_NE(gCall.dataIn, data.data());
        EXPECT_EQ(gCall.dataOut, gCall.dataIn);
        EXPECT_EQ(gCall.dataOutAvailable, 56U);
        EXPECT_TRUE(gCall.isLocked);
    }
}

TEST(CCryptAESCall, TurnsEachStatusIntoItsCode) {
    const struct {
        CCCryptorStatus status;
        std::int32_t error;
    } cases[] = {
        {kCCParamError, 203},
        {kCCBufferTooSmall, 204},
        {kCCMemoryFailure, 205},
        {kCCAlignmentError, 206},
        {kCCDecodeError, 207},
        {kCCUnimplemented, 208},
        {-4306, 209},
        {-4299, 209},
        {-1, 209},
        {1, 209},
    };
    CCryptAES aes;
    Configure(aes, CRYPT_MODE_CBC, CRYPT_PADDING_NONE, 16);
    for (const auto& c : cases) {
        Bytes data = CountingBytes(48);
        gCall = {};
        gCall.status = c.status;
        gCall.moved = 5;
        for (int operation = 0; operation < 3; ++operation) {
            std::size_t n = 48;
            try {
                operation == 0   ? aes.Encrypt(data.data(), &n, 48)
                : operation == 1 ? aes.Decrypt(data.data(), &n, 48)
                                 : static_cast<void>(aes.GetEncryptedSize(data.data(), 48));
                ADD_FAILURE() << "nothing thrown for " << c.status;
            } catch (const CCryptLibException& exception) {
                EXPECT_EQ(exception.GetErrorCode(), c.error) << c.status;
            }
            EXPECT_EQ(n, operation == 2 ? 48U : 5U) << "as the cipher call left it";
        }
        EXPECT_EQ(aes.GetDecryptedSize(data.data(), 48), 5U) << "swallowed: " << c.status;
        EXPECT_EQ(gCall.calls, 4);
    }
}

TEST(CCryptAESCall, IsNotMadeWithWrongParameters) {
    gCall = {};
    CCryptAES aes;
    Configure(aes, 9, CRYPT_PADDING_NONE, 16);
    Bytes data = CountingBytes(48);
    std::size_t n = 48;
    EXPECT_THROW(aes.Encrypt(data.data(), &n, 48), CCryptLibException);
    EXPECT_THROW(aes.GetEncryptedSize(data.data(), 48), CCryptLibException);
    EXPECT_EQ(aes.GetDecryptedSize(data.data(), 48), 48U);
    EXPECT_EQ(gCall.calls, 0);
}

}  // namespace

// Replaces the system's.
extern "C" CCCryptorStatus CCCrypt(CCOperation op, CCAlgorithm alg, CCOptions options,
                                   const void* key, std::size_t keyLength, const void* iv,
                                   const void* dataIn, std::size_t dataInLength, void* dataOut,
                                   std::size_t dataOutAvailable, std::size_t* dataOutMoved) {
    ++gCall.calls;
    gCall.op = op;
    gCall.alg = alg;
    gCall.options = options;
    gCall.key.assign(static_cast<const char*>(key), keyLength);
    gCall.iv.assign(static_cast<const char*>(iv), 16);
    gCall.dataIn = dataIn;
    gCall.data.assign(static_cast<const char*>(dataIn), dataInLength);
    gCall.dataOut = dataOut;
    gCall.dataOutAvailable = dataOutAvailable;
    gCall.dataOutMoved = dataOutMoved;
    std::thread([] {
        gCall.isLocked = !gCryptMutex.try_lock();
        if (!gCall.isLocked) {
            gCryptMutex.unlock();
        }
    }).join();
    *dataOutMoved = gCall.moved;
    return gCall.status;
}
