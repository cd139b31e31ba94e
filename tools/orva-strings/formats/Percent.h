#ifndef ORVALANGUAGE_TOOLS_FORMATS_PERCENT_H
#define ORVALANGUAGE_TOOLS_FORMATS_PERCENT_H

#include <cstdint>
#include <string>
#include <string_view>

#include "tools/orva-strings/Hex.h"

// Writes each byte for which needsEscape(byte) is true as % and two hexadecimal digits.
template <typename NeedsEscape>
std::string PercentEncoded(std::string_view text, NeedsEscape needsEscape) {
    std::string encoded;
    for (const char c : text) {
        if (needsEscape(c)) {
            const auto byte = static_cast<std::uint8_t>(c);
            encoded += '%' + ToHexDigits(&byte, 1);
        } else {
            encoded += c;
        }
    }
    return encoded;
}

#endif
