#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_MEANTPROTECTED_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_MEANTPROTECTED_H

#include <string_view>

// The key that was probably meant where the library reads this one: its first run of letters, digits,
// underscores, full stops, hyphens and slashes, which may be empty.
std::string_view MeantKey(std::string_view key);

// What follows that run, from the next such character on, such as a text where a colon was meant as the
// equals sign.
std::string_view AfterMeantKey(std::string_view key);

// Whether a key begins with "IDE" or, in front of anything but a letter, with it in another case or
// with two letters swapped.
bool BeginsAsProtected(std::string_view key);

// Whether a line may hold a text that was to be protected.
bool HoldsProtected(std::string_view line);

#endif
