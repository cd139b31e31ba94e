#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_FIXDIFF_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_FIXDIFF_H

#include <ostream>
#include <string>

#include "tools/orva-strings/document/FixedStrings.h"

// Writes what mending changes in a file, of these bytes, as a unified diff, which patch(1) can apply.
// The name is escaped by Printable; the lines are as they are. Writes nothing if nothing changes.
void WriteFixDiff(const std::string& file, const std::string& bytes, const FixedStrings& fixed,
                  std::ostream& out);

#endif
