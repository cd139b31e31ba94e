#include <stdexcept>

#include <CommonCrypto/CommonCryptor.h>

#include "tests/support/ReferenceAes.h"

Bytes EncryptCbc(const Bytes& key, const Bytes& iv, const Bytes& data) {
    constexpr CCOptions kCbcWithoutPadding = 0;
    Bytes encrypted(data.size());
    std::size_t length = 0;
    if (CCCrypt(kCCEncrypt, kCCAlgorithmAES128, kCbcWithoutPadding, key.data(), key.size(),
                iv.data(), data.data(), data.size(), encrypted.data(), encrypted.size(),
                &length) != kCCSuccess) {
        throw std::runtime_error("CommonCrypto does not encrypt");
    }
    return encrypted;
}
