#ifndef ORVALANGUAGE_TESTS_SUPPORT_STOREDFORM_H
#define ORVALANGUAGE_TESTS_SUPPORT_STOREDFORM_H

#include <string>
#include <utility>
#include <vector>

#include "tests/support/Hex.h"

// The stored form of protected texts once more, written from its description over OpenSSL and
// sharing nothing with the library: what the tests hold the library's own against.

// The block that a counter gives.
Bytes CounterBlock(std::uint8_t counter, const Bytes& material);

// The five derived blocks, in their order.
Bytes DerivedBlocks(const Bytes& material);

// A text as it is stored.
std::string Stored(const std::string& text, const Bytes& material);

// The same with blocks of one's own under the encryption: tag and padded text as they are given.
std::string StoredBlocks(const Bytes& tagAndPadded, const Bytes& material);

// The tag of a padded text that is said to be so long.
Bytes TagOf(std::size_t textLength, const Bytes& padded, const Bytes& material);

// The development key, which the tests' library is built with.
Bytes DevelopmentKey();

#endif
