#ifndef ORVALANGUAGE_TOOLS_HEX_H
#define ORVALANGUAGE_TOOLS_HEX_H

#include <cstddef>
#include <cstdint>
#include <string>

// Bytes as upper-case hexadecimal digits.
inline std::string ToHexDigits(const std::uint8_t* bytes, std::size_t length) {
    std::string digits;
    digits.reserve(2 * length);
    for (std::size_t i = 0; i < length; ++i) {
        digits += "0123456789ABCDEF"[bytes[i] >> 4U];
        digits += "0123456789ABCDEF"[bytes[i] & 0xFU];
    }
    return digits;
}

#endif
