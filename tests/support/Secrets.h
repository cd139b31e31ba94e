#ifndef ORVALANGUAGE_TESTS_SUPPORT_SECRETS_H
#define ORVALANGUAGE_TESTS_SUPPORT_SECRETS_H

#include <utility>
#include <vector>

#include "tests/support/Hex.h"

// What decoding works with and must not leave behind, each with a name: the key material, what is
// derived from it, the round keys of each, and the text.
std::vector<std::pair<const char*, Bytes>> SecretsOf(const Bytes& material,
                                                     const std::string& text);

#endif
