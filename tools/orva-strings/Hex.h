#ifndef ORVALANGUAGE_TOOLS_HEX_H
#define ORVALANGUAGE_TOOLS_HEX_H

#include <cstddef>
#include <cstdint>
#include <string>

// Writes each byte as two upper-case hexadecimal digits.
inline void WriteHexDigits(const std::uint8_t* bytes, std::size_t length, char* digits) {
    for (std::size_t i = 0; i < length; ++i) {
        *digits++ = "0123456789ABCDEF"[bytes[i] >> 4U];
        *digits++ = "0123456789ABCDEF"[bytes[i] & 0xFU];
    }
}

inline std::string ToHexDigits(const std::uint8_t* bytes, std::size_t length) {
    std::string digits(2 * length, '\0');
    WriteHexDigits(bytes, length, digits.data());
    return digits;
}

#endif
