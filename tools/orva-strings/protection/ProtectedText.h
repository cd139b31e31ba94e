#ifndef ORVALANGUAGE_TOOLS_PROTECTION_PROTECTEDTEXT_H
#define ORVALANGUAGE_TOOLS_PROTECTION_PROTECTEDTEXT_H

#include <optional>
#include <string>

#include "protection/ProtectedForm.h"

// A text in its stored form. Equal texts under one key give equal results.
std::string EncodeProtectedText(const ProtectionKeys& keys, const std::string& text);

// The text of a stored value; nothing if it is none, was damaged, or made with another key.
std::optional<std::string> DecodeProtectedText(const ProtectionKeys& keys,
                                               const std::string& stored);

// Whether a value has the look of a stored one, in digits of either case; it may not decode.
bool LooksStored(const std::string& value);

#endif
