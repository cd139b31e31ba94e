#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_SECTIONLIST_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_SECTIONLIST_H

#include <cstddef>
#include <functional>
#include <string_view>

#include "tools/orva-strings/cli/Finding.h"

// A section of a strings file, as a load counts its entries: each key once, and the header.
struct SectionSummary {
    std::string_view name;
    std::size_t line;  // its header's, from 0
    std::size_t entries;
    std::size_t protectedEntries;
    bool isReachable;  // whether a load can reach it
};

// Calls take with each section of a strings file, in order. Returns the headers that the library
// does not take for one, or that the file has no section.
Findings ListSections(std::string_view bytes,
                      const std::function<void(const SectionSummary&)>& take);

#endif
