#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_UNANSWERED_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_UNANSWERED_H

#include <string_view>
#include <vector>

#include "tools/orva-strings/cli/Finding.h"
#include "tools/orva-strings/document/StringsReader.h"

// Adds why the library answers null for each of these keys, at the line of its first entry. The
// section is the one loaded, with the reader at its header. A key that it lacks is at no line or, if
// the section is one of several, at the header.
void ExplainUnanswered(const std::vector<std::string_view>& keys, StringsReader section,
                       bool isOneOfSeveral, Findings& findings);

#endif
