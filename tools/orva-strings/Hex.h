#ifndef ORVALANGUAGE_TOOLS_HEX_H
#define ORVALANGUAGE_TOOLS_HEX_H

#include <cstddef>
#include <cstdint>
#include <string>

// Writes each byte as two upper-case hexadecimal digits.
inline void WriteHexDigits(const std::uint8_t* bytes, std::size_t length, char* digits) {
    // Without a table, so that the compiler can write many at a time.
    constexpr std::uint8_t kToLetter = 'A' - ('9' + 1);
    const auto digit = [](std::uint8_t value) {
        return static_cast<char>('0' + value + (value > 9 ? kToLetter : 0));
    };
    for (std::size_t i = 0; i < length; ++i) {
        digits[2 * i] = digit(bytes[i] >> 4U);
        digits[2 * i + 1] = digit(bytes[i] & 0xFU);
    }
}

inline std::string ToHexDigits(const std::uint8_t* bytes, std::size_t length) {
    std::string digits(2 * length, '\0');
    WriteHexDigits(bytes, length, digits.data());
    return digits;
}

#endif
