#ifndef ORVALANGUAGE_TESTS_SUPPORT_REFERENCEAES_H
#define ORVALANGUAGE_TESTS_SUPPORT_REFERENCEAES_H

#include "tests/support/Hex.h"

// AES-256 in CBC mode without padding, of whole blocks: by OpenSSL or, on macOS, which has none for
// programs, by the system, as in the library. Throws if the cipher refuses.
Bytes EncryptCbc(const Bytes& key, const Bytes& iv, const Bytes& data);

#endif
