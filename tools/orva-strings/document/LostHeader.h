#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_LOSTHEADER_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_LOSTHEADER_H

#include "tools/orva-strings/cli/Finding.h"
#include "tools/orva-strings/document/StringsReader.h"

// Adds the headers in a line that the library does not take for one, such as those with a byte-order
// mark or a blank in front: errors, or warnings where the line may have been meant otherwise.
void FindLostHeaders(const StringsReader& lines, Findings& findings);

#endif
