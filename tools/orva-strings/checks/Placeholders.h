#ifndef ORVALANGUAGE_TOOLS_CHECKS_PLACEHOLDERS_H
#define ORVALANGUAGE_TOOLS_CHECKS_PLACEHOLDERS_H

#include <string>
#include <string_view>
#include <vector>

// A part of a text that a host replaces.
struct Placeholder {
    std::string meaning;  // equal for all that are replaced by the same thing
    std::string written;  // in the text
};

struct Placeholders {
    std::vector<Placeholder> list;  // sorted by meaning, each once
    bool isTime = false;            // the text has conversions of strftime, which printf has not
};

// Finds the placeholders of printf (with or without a position, but without the blank flag, as in
// "100 % done"), %@, %1, %(name)s, {0}, {} and {name} in a text.
Placeholders FindPlaceholders(std::string_view text);

// What is in a, but not in b: as written, separated by blanks.
std::string Missing(const Placeholders& a, const Placeholders& b);

#endif
