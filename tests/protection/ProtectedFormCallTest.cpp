// What the stored form does when the cipher call returns another length, which a good one never
// does.
#include <cstddef>
#include <cstdint>

#include <gtest/gtest.h>

#include "platform/CommonCryptor.h"
#include "protection/ProtectedForm.h"

namespace {

std::size_t gLess = 0;  // how many bytes fewer than there were
int gDecryptions = 0;

TEST(ProtectedFormCall, RejectsWhatDecryptsToAnotherLength) {
    const std::uint8_t material[kProtectedKey] = {};
    const ProtectionKeys keys(material);
    std::uint8_t data[3 * kProtectedBlock] = {};
    std::size_t textLength = 0;

    gLess = kProtectedBlock;
    EXPECT_FALSE(DecryptStored(keys, data, sizeof data, &textLength));
    EXPECT_EQ(gDecryptions, 1) << "the size, and no text";

    gLess = 0;
    EXPECT_FALSE(DecryptStored(keys, data, sizeof data, &textLength)) << "no padding of 0";
    EXPECT_EQ(gDecryptions, 3);
}

}  // namespace

extern "C" CCCryptorStatus CCCrypt(CCOperation op, CCAlgorithm, CCOptions, const void*, std::size_t,
                                   const void*, const void*, std::size_t dataInLength, void*,
                                   std::size_t, std::size_t* dataOutMoved) {
    *dataOutMoved = dataInLength;
    if (op == kCCDecrypt) {
        *dataOutMoved -= gLess;
        ++gDecryptions;
    }
    return kCCSuccess;
}
