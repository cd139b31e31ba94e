#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_FINDSECTION_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_FINDSECTION_H

#include <optional>
#include <string>
#include <string_view>

#include "tools/orva-strings/cli/Finding.h"
#include "tools/orva-strings/document/StringsReader.h"

// A reader at the header of the section that a load in this language takes; "" is for the first
// section. If no section has that name, adds the names and headers that may have been meant, and
// returns the first section if a fallback is wanted.
std::optional<StringsReader> FindSection(std::string_view bytes, const std::string& language,
                                         bool hasFallback, Findings& findings);

#endif
