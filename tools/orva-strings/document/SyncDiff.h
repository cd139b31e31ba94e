#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_SYNCDIFF_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_SYNCDIFF_H

#include <ostream>
#include <string>
#include <string_view>

#include "tools/orva-strings/document/SyncedStrings.h"

// Writes what syncing changes in a file, of these bytes, as a unified diff. Writes nothing if nothing
// changes.
void WriteSyncDiff(const std::string& file, std::string_view bytes, const SyncedStrings& synced,
                   std::ostream& out);

#endif
