// How a protected text is stored: the one place that says so. The decoder in the library and the
// encoder in the companion tool both follow it.
//
// From 32 bytes of key material, AES-256 in ECB mode makes five blocks of the counters 1 to 5, each
// a 16-byte big-endian number: the encryption key (1 and 2), the IV (3) and the tag key (4 and 5).
//
// A text T is padded with PKCS#7 to P, so P is one block at least. Its tag is the last block of
// AES-256-CBC, under the tag key and a zero IV, over the 16-byte big-endian length of T followed by
// P; the length in front keeps one text's tag from being a step on the way to another's. The cipher
// bytes are AES-256-CBC, under the encryption key and the IV, over the tag followed by P. As the
// tag comes first, texts that begin alike do not look alike; only equal texts do.
//
// The cipher bytes are stored as upper-case hexadecimal, in groups of eight digits, each the
// big-endian value that "%x" reads. So a stored text has 64 digits or more, a multiple of 32.
#ifndef ORVALANGUAGE_API_PROTECTEDFORM_H
#define ORVALANGUAGE_API_PROTECTEDFORM_H

#include <cstddef>
#include <cstdint>

// Whether an entry of this key, not null, is protected.
inline bool IsProtectedKey(const char* key) {
    return key[0] == 'I' && key[1] == 'D' && key[2] == 'E';
}

constexpr std::size_t kProtectedBlock = 16;
constexpr std::size_t kProtectedKey = 32;

constexpr std::size_t kGroupDigits = 8;
constexpr std::size_t kGroupBytes = kGroupDigits / 2;

// Whether a stored text can have so many digits: those of a tag and at least one block.
constexpr bool IsStoredLength(std::size_t digits) {
    constexpr std::size_t kBlockDigits = 2 * kProtectedBlock;
    return digits >= 2 * kBlockDigits && digits % kBlockDigits == 0;
}

// What the key material is turned into. Cleared when destroyed.
struct ProtectionKeys {
    // Throws what the cipher classes throw.
    explicit ProtectionKeys(const std::uint8_t (&material)[kProtectedKey]);
    ~ProtectionKeys();
    ProtectionKeys(const ProtectionKeys&) = delete;
    ProtectionKeys& operator=(const ProtectionKeys&) = delete;

    const std::uint8_t* EncryptionKey() const { return m_blocks; }
    const std::uint8_t* IV() const { return m_blocks + 2 * kProtectedBlock; }
    const std::uint8_t* TagKey() const { return m_blocks + 3 * kProtectedBlock; }

private:
    std::uint8_t m_blocks[5 * kProtectedBlock];
};

// Turns a stored text into its cipher bytes, half as many as it has digits. Returns false if it is
// none: another length, or anything else than upper-case digits.
bool ReadStoredDigits(const char* digits, std::size_t length, std::uint8_t* bytes);

// Decrypts cipher bytes in place and checks what they hold. Returns false if they were damaged, or
// made with another key; else *textLength bytes of text stand behind the first block.
//
// data    length bytes, two blocks or more. Changed in either case.
//
// Throws what the cipher classes throw, and std::bad_alloc.
bool DecryptStored(const ProtectionKeys& keys, std::uint8_t* data, std::size_t length,
                   std::size_t* textLength);

// Encrypts whole blocks in place with a key of kProtectedKey bytes. The mode is one of CCryptAES's.
// Throws what the cipher classes throw, and std::bad_alloc.
void EncryptBlocks(const std::uint8_t* key, const std::uint8_t* iv, std::uint32_t mode,
                   std::uint8_t* data, std::size_t length);

// Writes the tag of a text of textLength bytes, padded to paddedLength bytes at padded, to tag.
// Throws what the cipher classes throw, and std::bad_alloc.
void MakeTag(const ProtectionKeys& keys, std::size_t textLength, const std::uint8_t* padded,
             std::size_t paddedLength, std::uint8_t (&tag)[kProtectedBlock]);

#endif
