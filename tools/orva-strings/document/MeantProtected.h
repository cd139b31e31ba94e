#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_MEANTPROTECTED_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_MEANTPROTECTED_H

#include <string_view>

// The name that a key, as the library reads it, was probably meant to be: from its first letter, digit,
// underscore, full stop, hyphen or slash up to the first other character. Empty if there is no such.
std::string_view MeantName(std::string_view key);

// What the key holds after that name, from the next such character on, such as a text where a colon was
// meant as the equals sign.
std::string_view AfterMeantName(std::string_view key);

// Whether a name begins with "IDE" or, in front of anything but a letter, with it in another case or
// with two letters swapped.
bool BeginsAsProtected(std::string_view name);

// Whether a line may hold a text that was to be protected.
bool HoldsProtected(std::string_view line);

#endif
