#ifndef ORVALANGUAGE_TOOLS_PRINTABLE_H
#define ORVALANGUAGE_TOOLS_PRINTABLE_H

#include <ostream>
#include <string_view>

// A text of a file's or a user's on its way to a terminal, which obeys control characters: out <<
// Printable{text} writes "\x1B" for one, and all else as it is. A tab is none.
struct Printable {
    std::string_view text;
};

std::ostream& operator<<(std::ostream& out, Printable printable);

#endif
