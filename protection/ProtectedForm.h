// How a protected text is stored. The library's decoder and the companion tool's encoder both
// follow this description.
//
// AES-256 in ECB mode, under the 32 bytes of key material, encrypts the counters 1 to 5, each a
// 16-byte big-endian number. The five blocks are the encryption key (1 and 2), the IV (3) and the
// tag key (4 and 5).
//
// A text T is padded with PKCS#7 to P, so P is at least one block. Its tag is the last block of
// AES-256-CBC, under the tag key and a zero IV, over the 16-byte big-endian length of T followed by
// P. The length comes first so that no text's tag is an intermediate step of another's. The cipher
// bytes are AES-256-CBC, under the encryption key and the IV, over the tag followed by P. As the
// tag comes first, texts that begin alike do not look alike; only equal texts do.
//
// The cipher bytes are stored as upper-case hexadecimal, in groups of eight digits, each the
// big-endian value that "%x" reads. So a stored text has at least 64 digits, and a multiple of 32.
#ifndef ORVALANGUAGE_PROTECTION_PROTECTEDFORM_H
#define ORVALANGUAGE_PROTECTION_PROTECTEDFORM_H

#include <cstddef>
#include <cstdint>

#include "crypt/CCryptAES.h"

// Whether an entry with this key, which must not be null, is protected.
inline bool IsProtectedKey(const char* key) {
    return key[0] == 'I' && key[1] == 'D' && key[2] == 'E';
}

constexpr std::size_t kProtectedBlock = 16;
constexpr std::size_t kProtectedKey = 32;

constexpr std::size_t kGroupDigits = 8;
constexpr std::size_t kGroupBytes = kGroupDigits / 2;

// Whether a stored text can have this many digits: those of a tag and at least one block.
constexpr bool IsStoredLength(std::size_t digits) {
    constexpr std::size_t kBlockDigits = 2 * kProtectedBlock;
    return digits >= 2 * kBlockDigits && digits % kBlockDigits == 0;
}

// The keys derived from the key material, each in the cipher that uses it, for any number of texts.
// Cleared when destroyed.
class ProtectionKeys {
public:
    // Throws what the cipher classes throw, and std::bad_alloc.
    explicit ProtectionKeys(const std::uint8_t (&material)[kProtectedKey]);

    // For the cipher bytes, with the encryption key and the IV.
    const CCryptAES& TextCipher() const noexcept { return m_textCipher; }

    // For tags, with the tag key and a zero IV.
    const CCryptAES& TagCipher() const noexcept { return m_tagCipher; }

private:
    CCryptAES m_textCipher;
    CCryptAES m_tagCipher;
};

// Converts a stored text to its cipher bytes, half as many as it has digits. Returns false if the
// length can't be a stored text's, or for anything but upper-case digits.
bool ReadStoredDigits(const char* digits, std::size_t length, std::uint8_t* bytes);

// Decrypts cipher bytes in place and checks them. Returns false if they were damaged or made with
// another key. Otherwise the text is the *textLength bytes after the first block.
//
// data    length bytes, at least two blocks. Changed in either case.
//
// Throws what the cipher classes throw, and std::bad_alloc.
bool DecryptStored(const ProtectionKeys& keys, std::uint8_t* data, std::size_t length,
                   std::size_t* textLength);

// Writes the tag of a text of textLength bytes, given at padded with its padding, paddedLength
// bytes in all. Throws what the cipher classes throw, and std::bad_alloc.
void MakeTag(const ProtectionKeys& keys, std::size_t textLength, const std::uint8_t* padded,
             std::size_t paddedLength, std::uint8_t (&tag)[kProtectedBlock]);

#endif
