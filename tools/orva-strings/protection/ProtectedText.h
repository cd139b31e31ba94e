#ifndef ORVALANGUAGE_TOOLS_PROTECTION_PROTECTEDTEXT_H
#define ORVALANGUAGE_TOOLS_PROTECTION_PROTECTEDTEXT_H

#include <optional>
#include <string>
#include <string_view>

#include "protection/ProtectedForm.h"

// Encodes a text in its stored form. Equal texts under one key give equal results.
std::string EncodeProtectedText(const ProtectionKeys& keys, std::string_view text);

// Decodes a stored value. Returns nothing if it is invalid, damaged or made with another key.
std::optional<std::string> DecodeProtectedText(const ProtectionKeys& keys, std::string_view stored);

// Whether a value looks like a stored one, with digits in either case. It may still not decode.
bool LooksStored(std::string_view value);

#endif
