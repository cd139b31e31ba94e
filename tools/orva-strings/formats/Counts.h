// What every format says alike.
#ifndef ORVALANGUAGE_TOOLS_FORMATS_COUNTS_H
#define ORVALANGUAGE_TOOLS_FORMATS_COUNTS_H

#include <cstddef>
#include <string>

#include "tools/orva-strings/formats/Report.h"

struct Counts {
    std::size_t errors = 0;
    std::size_t warnings = 0;
    std::size_t notes = 0;

    void Add(Severity severity) {
        errors += severity == Severity::kError ? 1U : 0U;
        warnings += severity == Severity::kWarning ? 1U : 0U;
        notes += severity == Severity::kNote ? 1U : 0U;
    }
};

Counts CountsIn(const Report& report);

// Such as "3 errors and 1 warning in 2 files", or "no findings in 1 file".
std::string Summary(const Counts& counts, std::size_t files);
std::string Summary(const Report& report);

#endif
