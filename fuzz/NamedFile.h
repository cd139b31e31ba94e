#ifndef ORVALANGUAGE_FUZZ_NAMEDFILE_H
#define ORVALANGUAGE_FUZZ_NAMEDFILE_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

// An input that is a name, a line feed and a file; the name ends at a NUL, as C strings do.
struct NamedFile {
    NamedFile(const std::uint8_t* data, std::size_t size) {
        const std::string input(reinterpret_cast<const char*>(data), size);
        const std::size_t end = std::min(input.find('\n'), input.size());
        name = input.substr(0, end).c_str();
        file = end < input.size() ? input.substr(end + 1) : "";
    }

    std::string name;
    std::string file;
};

#endif
