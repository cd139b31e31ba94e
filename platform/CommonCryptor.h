// The system's one-shot cipher call: CommonCrypto where there is one, elsewhere the same names with
// a source of our own behind them.
#ifndef ORVALANGUAGE_PLATFORM_COMMONCRYPTOR_H
#define ORVALANGUAGE_PLATFORM_COMMONCRYPTOR_H

#ifdef __APPLE__

#include <CommonCrypto/CommonCryptor.h>

#else

#include <cstddef>
#include <cstdint>

using CCCryptorStatus = std::int32_t;
using CCOperation = std::uint32_t;
using CCAlgorithm = std::uint32_t;
using CCOptions = std::uint32_t;

enum : CCCryptorStatus {
    kCCSuccess = 0,
    kCCParamError = -4300,
    kCCBufferTooSmall = -4301,
    kCCMemoryFailure = -4302,
    kCCAlignmentError = -4303,
    kCCDecodeError = -4304,
    kCCUnimplemented = -4305
};

enum : CCOperation { kCCEncrypt = 0, kCCDecrypt = 1 };

// AES with a key of any of its lengths, in spite of the name.
enum : CCAlgorithm { kCCAlgorithmAES128 = 0 };

// Without kCCOptionECBMode the mode is CBC.
enum : CCOptions { kCCOptionPKCS7Padding = 1, kCCOptionECBMode = 2 };

enum : std::size_t {
    kCCKeySizeAES128 = 16,
    kCCKeySizeAES192 = 24,
    kCCKeySizeAES256 = 32,
    kCCBlockSizeAES128 = 16
};

// Encrypts or decrypts a whole buffer. All lengths are in bytes.
//
// key, keyLength     16, 24 or 32 bytes.
// iv                 16 bytes; null means 16 zero bytes. Not read in ECB mode.
// dataIn, dataOut    may be the same buffer, but must not overlap in part. Not checked.
// dataOutAvailable   the room at dataOut. Of an input of n bytes, q of them in whole blocks, it
//                    takes q without padding, q + 16 to encrypt with padding, n to decrypt with it.
// dataOutMoved       not null. Gets the number of bytes written or, if that is more than available,
//                    the number needed.
//
// Returns
// - kCCParamError for a null key, an operation or algorithm other than the ones above, or another
//   length of key; nothing is written then, dataOutMoved included;
// - kCCBufferTooSmall if the room does not do; nothing is written but dataOutMoved;
// - kCCAlignmentError if n is not a multiple of 16 where it must be (all but padded encryption), or
//   is 0 in padded decryption; the whole blocks are written;
// - kCCDecodeError for bad padding; all blocks but the last are written. Apple's own call answers
//   kCCSuccess instead, so a caller must not rely on this to find damaged data;
// - kCCSuccess else. In padded decryption the padding is not written.
//
// It never runs out of memory, as it allocates none, and it is never kCCUnimplemented. It keeps
// nothing between calls, and clears the key's schedule and its copies of texts before it returns.
// Several threads may call it at once.
extern "C" CCCryptorStatus CCCrypt(CCOperation op, CCAlgorithm alg, CCOptions options,
                                   const void* key, std::size_t keyLength, const void* iv,
                                   const void* dataIn, std::size_t dataInLength, void* dataOut,
                                   std::size_t dataOutAvailable, std::size_t* dataOutMoved);

#endif

#endif
