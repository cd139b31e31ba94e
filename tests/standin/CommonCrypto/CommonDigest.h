// The few names of macOS's digests that are used here, so that the macOS source compiles elsewhere.
// Sha256CommonCryptoTest.cpp defines what the call does.
#ifndef ORVALANGUAGE_TESTS_STANDIN_COMMONCRYPTO_COMMONDIGEST_H
#define ORVALANGUAGE_TESTS_STANDIN_COMMONCRYPTO_COMMONDIGEST_H

#include <cstdint>

using CC_LONG = std::uint32_t;

extern "C" unsigned char* CC_SHA256(const void* data, CC_LONG length, unsigned char* digest);

#endif
