// What every format says alike.
#ifndef ORVALANGUAGE_TOOLS_FORMATS_COUNTS_H
#define ORVALANGUAGE_TOOLS_FORMATS_COUNTS_H

#include <cstddef>
#include <string>

#include "tools/orva-strings/formats/Report.h"

// Notes are not counted.
struct Counts {
    std::size_t errors = 0;
    std::size_t warnings = 0;
};

Counts CountsIn(const Report& report);

// Such as "3 errors and 1 warning in 2 files".
std::string Summary(const Counts& counts, std::size_t files);
std::string Summary(const Report& report);

#endif
