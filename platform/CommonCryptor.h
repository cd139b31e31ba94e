// The system's one-shot cipher call: CommonCrypto where it exists, elsewhere our own source under
// the same names.
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

// AES with any of its key lengths, despite the name.
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
// dataOutAvailable   the room at dataOut. An input of n bytes, q of them in whole blocks, needs q
//                    without padding, q + 16 to encrypt with padding, n to decrypt with padding.
// dataOutMoved       not null. Receives the number of bytes written, or the number needed if there
//                    is too little room.
//
// Returns
// - kCCParamError for a null key, or a key length, operation or algorithm other than those above;
//   nothing is written, not even dataOutMoved;
// - kCCBufferTooSmall if there is too little room; only dataOutMoved is written;
// - kCCAlignmentError if n is not a multiple of 16 where it must be (all but padded encryption), or
//   is 0 in padded decryption; the whole blocks are written;
// - kCCDecodeError for bad padding; all blocks but the last are written. Apple's own call returns
//   kCCSuccess instead, so a caller must not rely on this to detect damaged data;
// - otherwise kCCSuccess. In padded decryption the padding is not written.
//
// Never returns kCCMemoryFailure, as it allocates nothing, nor kCCUnimplemented. Keeps nothing
// between calls, and clears the key schedule and its copies of texts before it returns. Several
// threads may call it at once.
extern "C" CCCryptorStatus CCCrypt(CCOperation op, CCAlgorithm alg, CCOptions options,
                                   const void* key, std::size_t keyLength, const void* iv,
                                   const void* dataIn, std::size_t dataInLength, void* dataOut,
                                   std::size_t dataOutAvailable, std::size_t* dataOutMoved);

#endif

#endif
