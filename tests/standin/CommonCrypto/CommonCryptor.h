/*
 * The few names of CommonCrypto that are used here, to compile for macOS where its headers are not.
 * They say what the system's say, and in C's way, since the system's header is C: its constants are
 * of plain enumerations, not of the types that the call takes.
 */
#ifndef ORVALANGUAGE_TESTS_STANDIN_COMMONCRYPTO_COMMONCRYPTOR_H
#define ORVALANGUAGE_TESTS_STANDIN_COMMONCRYPTO_COMMONCRYPTOR_H

#include <stddef.h>
#include <stdint.h>

typedef int32_t CCCryptorStatus;
typedef uint32_t CCOperation;
typedef uint32_t CCAlgorithm;
typedef uint32_t CCOptions;

enum {
    kCCSuccess = 0,
    kCCParamError = -4300,
    kCCBufferTooSmall = -4301,
    kCCMemoryFailure = -4302,
    kCCAlignmentError = -4303,
    kCCDecodeError = -4304,
    kCCUnimplemented = -4305
};
enum { kCCEncrypt = 0, kCCDecrypt = 1 };
enum { kCCAlgorithmAES128 = 0 };
enum { kCCOptionPKCS7Padding = 1, kCCOptionECBMode = 2 };
enum { kCCKeySizeAES128 = 16, kCCKeySizeAES192 = 24, kCCKeySizeAES256 = 32 };
enum { kCCBlockSizeAES128 = 16 };

#ifdef __cplusplus
extern "C" {
#endif
CCCryptorStatus CCCrypt(CCOperation op, CCAlgorithm alg, CCOptions options, const void* key,
                        size_t keyLength, const void* iv, const void* dataIn, size_t dataInLength,
                        void* dataOut, size_t dataOutAvailable, size_t* dataOutMoved);
#ifdef __cplusplus
}
#endif

#endif
