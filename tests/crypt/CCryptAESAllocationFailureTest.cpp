// Every allocation of a cipher object fails once; nothing leaks, and the object reports what it is
// left with.
#include <new>
#include <string>

#include <gtest/gtest.h>

#include "crypt/CCryptAES.h"
#include "crypt/CCryptLibException.h"
#include "tests/support/FailingAllocation.h"
#include "tests/support/Hex.h"

namespace {

const Bytes kKey = CountingBytes(32);
const Bytes kIV = CountingBytes(16, 50);

// The code that encrypting a block throws, or 0.
std::int32_t ErrorOfEncrypt(const CCryptAES& aes) {
    std::uint8_t data[32] = {};
    std::size_t n = 16;
    try {
        aes.Encrypt(data, &n, sizeof data);
    } catch (const CCryptLibException& exception) {
        return exception.GetErrorCode();
    }
    return 0;
}

TEST(CCryptAESAllocationFailure, InSetKeyLeavesNoKeyAndTheNewLength) {
    const std::size_t live = LiveAllocations();
    for (const bool hadKey : {false, true}) {
        CCryptAES aes;
        aes.SetIV(kIV.data(), 16);
        if (hadKey) {
            aes.SetKey(kKey.data(), 16);
            EXPECT_EQ(ErrorOfEncrypt(aes), 0);
        }
        {
            const FailingAllocation failing(1);
            EXPECT_THROW(aes.SetKey(kKey.data(), 24), std::bad_alloc);
        }
        EXPECT_EQ(ErrorOfEncrypt(aes), 203) << "the length is good; the cipher call refuses null";
        {
            const FailingAllocation failing(1);
            EXPECT_THROW(aes.SetKey(kKey.data(), 20), std::bad_alloc);
        }
        EXPECT_EQ(ErrorOfEncrypt(aes), 454) << "the length is the new one";
        aes.SetKey(kKey.data(), 16);
        EXPECT_EQ(ErrorOfEncrypt(aes), 0);
    }
    EXPECT_EQ(LiveAllocations(), live);
}

TEST(CCryptAESAllocationFailure, InSetIVLeavesNoIVAndTheNewLength) {
    const std::size_t live = LiveAllocations();
    {
        CCryptAES aes;
        aes.SetKey(kKey.data(), 16);
        aes.SetIV(kIV.data(), 16);
        {
            const FailingAllocation failing(1);
            EXPECT_THROW(aes.SetIV(kIV.data(), 15), std::bad_alloc);
        }
        EXPECT_EQ(ErrorOfEncrypt(aes), 452) << "the length is the new one";
        {
            const FailingAllocation failing(1);
            EXPECT_THROW(aes.SetIV(kIV.data(), 16), std::bad_alloc);
        }
        EXPECT_EQ(ErrorOfEncrypt(aes), 0) << "a null IV is 16 zero bytes to the cipher call";
    }
    EXPECT_EQ(LiveAllocations(), live);
}

TEST(CCryptAESAllocationFailure, InASizeQueryIsPassedOnByOneAndSwallowedByTheOther) {
    CCryptAES aes;
    aes.SetKey(kKey.data(), 16);
    aes.SetIV(kIV.data(), 16);
    const Bytes data = CountingBytes(32);
    const std::size_t live = LiveAllocations();
    std::size_t size = 0;
    {
        const FailingAllocation failing(1);
        EXPECT_THROW(aes.GetEncryptedSize(data.data(), 32), std::bad_alloc);
    }
    {
        const FailingAllocation failing(1);
        size = aes.GetDecryptedSize(data.data(), 32);
        EXPECT_TRUE(FailingAllocation::HasFailed());
    }
    EXPECT_EQ(size, 32U) << "the input's length";
    EXPECT_EQ(LiveAllocations(), live);
    {
        const FailingAllocation failing(2);
        EXPECT_EQ(aes.GetEncryptedSize(data.data(), 32), 48U);
        EXPECT_FALSE(FailingAllocation::HasFailed()) << "the copy is the one allocation";
    }
}

TEST(CCryptAESAllocationFailure, NoSizeQueryLeavesItsCopyBehind) {
    CCryptAES aes;
    aes.SetKey(kKey.data(), 16);
    aes.SetIV(kIV.data(), 16);
    const Bytes data = CountingBytes(33);
    const std::size_t live = LiveAllocations();
    aes.GetEncryptedSize(data.data(), 33);
    aes.GetDecryptedSize(data.data(), 33);
    aes.SetPadding(CRYPT_PADDING_NONE);
    EXPECT_THROW(aes.GetEncryptedSize(data.data(), 33), CCryptLibException);
    aes.GetDecryptedSize(data.data(), 33);
    aes.SetMode(9);
    EXPECT_THROW(aes.GetEncryptedSize(data.data(), 33), CCryptLibException);
    aes.GetDecryptedSize(data.data(), 33);
    EXPECT_EQ(LiveAllocations(), live);
}

TEST(CCryptAESAllocationFailure, NoOperationAllocates) {
    CCryptAES aes;
    aes.SetKey(kKey.data(), 16);
    aes.SetIV(kIV.data(), 16);
    const FailingAllocation failing(1);
    EXPECT_EQ(ErrorOfEncrypt(aes), 0);
    EXPECT_FALSE(FailingAllocation::HasFailed());
}

TEST(CCryptAESFreedMemory, HoldsNeitherKeyNorIVNorText) {
    const Bytes text = CountingBytes(40, 100);
    const struct {
        const char* what;
        const Bytes& bytes;
        std::size_t length;
    } cases[] = {{"the key's beginning", kKey, 8}, {"the IV", kIV, 8}, {"the text", text, 16}};
    for (const auto& c : cases) {
        Bytes data = text;
        data.resize(48);
        std::size_t n = 40;
        const FreedMemoryWatch watch(c.bytes.data(), c.length);
        {
            CCryptAES aes;
            for (int i = 0; i < 2; ++i) {
                aes.SetKey(kKey.data(), 32);
                aes.SetIV(kIV.data(), 16);
            }
            aes.GetEncryptedSize(text.data(), 40);
            aes.Encrypt(data.data(), &n, 48);
            aes.GetDecryptedSize(data.data(), 48);
        }
        EXPECT_FALSE(FreedMemoryWatch::HasSeen()) << c.what;
        EXPECT_EQ(FreedMemoryWatch::Blocks(), 6U);
    }
    {
        const FreedMemoryWatch watch(text.data(), 16);
        {
            const Bytes copy(text.begin(), text.end());
            EXPECT_EQ(copy, text);
        }
        EXPECT_TRUE(FreedMemoryWatch::HasSeen()) << "what is not cleared would be seen";
    }
}

TEST(CCryptAESAllocationFailure, ASizeQueryCopiesBeforeItChecks) {
    const CCryptAES aes;  // nothing set up
    const Bytes data = CountingBytes(32);
    const FailingAllocation failing(1);
    EXPECT_THROW(aes.GetEncryptedSize(data.data(), 32), std::bad_alloc);
}

TEST(CCryptAESAllocationFailure, EveryCopyIsFreedOnce) {
    const std::size_t live = LiveAllocations();
    { const CCryptAES never; }
    EXPECT_EQ(LiveAllocations(), live);
    {
        CCryptAES twice;
        for (int i = 0; i < 2; ++i) {
            twice.SetKey(kKey.data(), 32);
            twice.SetIV(kIV.data(), 16);
        }
        EXPECT_EQ(LiveAllocations(), live + 2);
        twice.SetKey(nullptr, 0);
    }
    EXPECT_EQ(LiveAllocations(), live);
}

}  // namespace
