#ifndef ORVALANGUAGE_TESTS_SUPPORT_STOREDFORM_H
#define ORVALANGUAGE_TESTS_SUPPORT_STOREDFORM_H

#include <string>
#include <utility>
#include <vector>

#include "tests/support/Hex.h"

// A second implementation of the stored form, written from its description over ReferenceAes.h. The
// tests compare the library's own form with it.

// The block that belongs to a counter.
Bytes CounterBlock(std::uint8_t counter, const Bytes& material);

// The five derived blocks, in order.
Bytes DerivedBlocks(const Bytes& material);

// A text in its stored form.
std::string Stored(const std::string& text, const Bytes& material);

// The same, but encrypts the given tag and padded text as they are.
std::string StoredBlocks(const Bytes& tagAndPadded, const Bytes& material);

// The tag of a padded text whose length is given as textLength.
Bytes TagOf(std::size_t textLength, const Bytes& padded, const Bytes& material);

// The development key, which the library under test is built with.
Bytes DevelopmentKey();

#endif
