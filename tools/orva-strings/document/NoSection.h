#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_NOSECTION_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_NOSECTION_H

#include <optional>

#include "tools/orva-strings/cli/Finding.h"

// What every command reports for a document without a section.
inline Finding NoSection() {
    return {Severity::kError, std::nullopt, "the file has no section"};
}

#endif
