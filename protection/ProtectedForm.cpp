#include "protection/ProtectedForm.h"

#include <cstdio>
#include <cstring>

#include "clearing/Cleared.h"
#include "clearing/ClearedArray.h"

namespace {

constexpr std::uint8_t kZeroIV[kProtectedBlock] = {};

// Writes a number as one big-endian block.
void WriteBlock(std::uint8_t* block, std::uint64_t number) {
    std::memset(block, 0, kProtectedBlock);
    for (std::size_t i = kProtectedBlock; number != 0; number >>= 8U) {
        block[--i] = static_cast<std::uint8_t>(number);
    }
}

// Whether all are upper-case hexadecimal digits. Without branches: letters come at random, so a
// processor would mispredict many, and lose more time there than on the rest.
bool AreStoredDigits(const char* digits, std::size_t length) {
    unsigned wrong = 0;
    for (std::size_t i = 0; i < length; ++i) {
        const unsigned fromZero = static_cast<unsigned char>(digits[i] - '0');
        const unsigned fromA = static_cast<unsigned char>(digits[i] - 'A');
        wrong |= static_cast<unsigned>(fromZero > 9U) & static_cast<unsigned>(fromA > 5U);
    }
    return wrong == 0;
}

// The length of the padding at the end of whole blocks, or 0 if it is bad. Always checks every byte
// of the last block.
std::size_t PaddingOf(const std::uint8_t* padded, std::size_t length) {
    const std::size_t padding = padded[length - 1];
    auto wrong = static_cast<unsigned>(padding == 0 || padding > kProtectedBlock);
    for (std::size_t i = 1; i <= kProtectedBlock; ++i) {
        wrong |= i <= padding ? static_cast<unsigned>(padded[length - i] ^ padding) : 0U;
    }
    return wrong == 0 ? padding : 0;
}

// Whether two tags are equal. Takes the same time wherever they differ.
bool EqualTags(const std::uint8_t* a, const std::uint8_t* b) {
    unsigned difference = 0;
    for (std::size_t i = 0; i < kProtectedBlock; ++i) {
        difference |= static_cast<unsigned>(a[i] ^ b[i]);
    }
    return difference == 0;
}

}  // namespace

ProtectionKeys::ProtectionKeys(const std::uint8_t (&material)[kProtectedKey]) {
    // The ciphers' own padding stays off: some systems' cipher calls accept bad padding.
    m_textCipher.SetPadding(CRYPT_PADDING_NONE);
    m_tagCipher.SetPadding(CRYPT_PADDING_NONE);

    Cleared<std::uint8_t[5 * kProtectedBlock]> blocks;
    std::size_t length = sizeof blocks.value;
    for (std::size_t i = 0; i < length / kProtectedBlock; ++i) {
        WriteBlock(blocks.value + i * kProtectedBlock, i + 1);
    }
    // The cipher for tags derives the keys, too: a third one would be more to set up.
    m_tagCipher.SetIV(kZeroIV, kProtectedBlock);
    m_tagCipher.SetMode(CRYPT_MODE_ECB);
    m_tagCipher.SetKey(material, kProtectedKey);
    m_tagCipher.Encrypt(blocks.value, &length, length);

    m_textCipher.SetMode(CRYPT_MODE_CBC);
    m_textCipher.SetKey(blocks.value, kProtectedKey);
    m_textCipher.SetIV(blocks.value + 2 * kProtectedBlock, kProtectedBlock);
    m_tagCipher.SetMode(CRYPT_MODE_CBC);
    m_tagCipher.SetKey(blocks.value + 3 * kProtectedBlock, kProtectedKey);
}

bool ReadStoredDigits(const char* digits, std::size_t length, std::uint8_t* bytes) {
    // Validate first: "%x" alone also accepts spaces, signs and 0x.
    if (!IsStoredLength(length) || !AreStoredDigits(digits, length)) {
        return false;
    }
    // Copy each group: sscanf scans its whole input every time. Its result needs no check: eight
    // digits are always a number.
    char group[kGroupDigits + 1] = {};
    for (std::size_t i = 0; i < length; i += kGroupDigits) {
        std::memcpy(group, digits + i, kGroupDigits);
        unsigned value = 0;
        static_cast<void>(std::sscanf(group, "%x", &value));
        for (std::size_t byte = kGroupBytes; byte > 0; --byte) {
            *bytes++ = static_cast<std::uint8_t>(value >> (8 * (byte - 1)));
        }
    }
    return true;
}

bool DecryptStored(const ProtectionKeys& keys, std::uint8_t* data, std::size_t length,
                   std::size_t* textLength) {
    // Ask for the size first, as with any padding; without padding it can only be length.
    if (keys.TextCipher().GetDecryptedSize(data, length) != length) {
        return false;
    }
    keys.TextCipher().Decrypt(data, &length, length);

    const std::uint8_t* const padded = data + kProtectedBlock;
    const std::size_t paddedLength = length - kProtectedBlock;
    const std::size_t padding = PaddingOf(padded, paddedLength);
    std::uint8_t tag[kProtectedBlock];
    MakeTag(keys, paddedLength - padding, padded, paddedLength, tag);
    *textLength = paddedLength - padding;
    return padding != 0 && EqualTags(data, tag);
}

void MakeTag(const ProtectionKeys& keys, std::size_t textLength, const std::uint8_t* padded,
             std::size_t paddedLength, std::uint8_t (&tag)[kProtectedBlock]) {
    const ClearedArray chain(kProtectedBlock + paddedLength);
    WriteBlock(chain.Get(), textLength);
    std::memcpy(chain.Get() + kProtectedBlock, padded, paddedLength);
    std::size_t length = chain.Size();
    keys.TagCipher().Encrypt(chain.Get(), &length, length);
    std::memcpy(tag, chain.Get() + paddedLength, kProtectedBlock);
}
