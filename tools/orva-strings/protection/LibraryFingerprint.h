#ifndef ORVALANGUAGE_TOOLS_PROTECTION_LIBRARYFINGERPRINT_H
#define ORVALANGUAGE_TOOLS_PROTECTION_LIBRARYFINGERPRINT_H

#include <set>
#include <string>

// The fingerprints of keys that stand in a file, each once: one for a built library, whether it is
// for one architecture or several; none for any other file. The file is only read, in pieces, so it
// may be larger than memory. Throws std::system_error if it can't be read.
std::set<std::string> FingerprintsIn(const std::string& path);

#endif
