#ifndef ORVALANGUAGE_TESTS_SUPPORT_HEX_H
#define ORVALANGUAGE_TESTS_SUPPORT_HEX_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

using Bytes = std::vector<std::uint8_t>;

// Takes pairs of hexadecimal digits only.
inline Bytes FromHex(const std::string& digits) {
    Bytes bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
        bytes.push_back(static_cast<std::uint8_t>(std::stoul(digits.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

inline std::string ToHex(const std::uint8_t* bytes, std::size_t length) {
    std::string digits;
    for (std::size_t i = 0; i < length; ++i) {
        digits += "0123456789abcdef"[bytes[i] >> 4U];
        digits += "0123456789abcdef"[bytes[i] & 15U];
    }
    return digits;
}

inline std::string ToHex(const Bytes& bytes) {
    return ToHex(bytes.data(), bytes.size());
}

// length bytes that count up from first.
inline Bytes CountingBytes(std::size_t length, unsigned first = 0) {
    Bytes bytes(length);
    for (std::size_t i = 0; i < length; ++i) {
        bytes[i] = static_cast<std::uint8_t>(first + i);
    }
    return bytes;
}

#endif
