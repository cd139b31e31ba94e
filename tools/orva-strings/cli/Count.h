#ifndef ORVALANGUAGE_TOOLS_CLI_COUNT_H
#define ORVALANGUAGE_TOOLS_CLI_COUNT_H

#include <cstddef>
#include <string>

// "1 line" or "2 lines", for example.
inline std::string Count(std::size_t count, const char* one, const char* many) {
    return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

#endif
