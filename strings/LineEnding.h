// Where a line of a strings file ends: shared by the library's reader and the command's document.
#ifndef ORVALANGUAGE_STRINGS_LINEENDING_H
#define ORVALANGUAGE_STRINGS_LINEENDING_H

#include <cstddef>
#include <string_view>

// The length of a line's text. line is given without its line feed; one carriage return at its very
// end belongs to the ending, too.
inline std::size_t TextLength(std::string_view line) {
    return !line.empty() && line.back() == '\r' ? line.size() - 1 : line.size();
}

#endif
