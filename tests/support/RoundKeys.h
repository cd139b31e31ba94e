#ifndef ORVALANGUAGE_TESTS_SUPPORT_ROUNDKEYS_H
#define ORVALANGUAGE_TESTS_SUPPORT_ROUNDKEYS_H

#include <utility>
#include <vector>

#include "tests/support/Hex.h"

// The round keys that decoding works with, each with a name, as the cipher library keeps them. None
// on macOS, where only the system knows how it keeps them.
std::vector<std::pair<const char*, Bytes>> RoundKeysOf(const Bytes& material, const Bytes& derived);

#endif
