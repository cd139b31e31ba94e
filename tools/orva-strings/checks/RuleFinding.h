#ifndef ORVALANGUAGE_TOOLS_CHECKS_RULEFINDING_H
#define ORVALANGUAGE_TOOLS_CHECKS_RULEFINDING_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "tools/orva-strings/checks/Rules.h"
#include "tools/orva-strings/cli/Finding.h"

// Where in a file.
struct Place {
    std::size_t line;    // from 0
    std::size_t column;  // from 0, in characters; a byte that is not part of UTF-8 counts as one
};

// What check says about a file. Its bytes are as they are in the file, so they must be escaped
// wherever they are shown.
struct RuleFinding {
    Rule rule;
    Severity severity;
    std::optional<Place> place;  // absent if about the whole file
    std::string section;         // the name of the section in which it is, or which is missing
    std::string key;             // of the entry that it is about, if any
    std::string text;            // what a host gets, and how to mend it
};
using RuleFindings = std::vector<RuleFinding>;

#endif
