#ifndef ORVALANGUAGE_FUZZ_TWOINPUTS_H
#define ORVALANGUAGE_FUZZ_TWOINPUTS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

// Two texts in one input, parted by a NUL byte. Without one, the second is empty.
struct TwoInputs {
    TwoInputs(const std::uint8_t* data, std::size_t size) {
        const std::string input(reinterpret_cast<const char*>(data), size);
        const std::size_t end = std::min(input.find('\0'), input.size());
        first = input.substr(0, end);
        second = end < input.size() ? input.substr(end + 1) : "";
    }

    std::string first;
    std::string second;
};

#endif
