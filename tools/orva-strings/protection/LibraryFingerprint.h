#ifndef ORVALANGUAGE_TOOLS_PROTECTION_LIBRARYFINGERPRINT_H
#define ORVALANGUAGE_TOOLS_PROTECTION_LIBRARYFINGERPRINT_H

#include <set>
#include <string>

// The key fingerprints in a file, each once. A built library has one, even if it is for several
// architectures; any other file has none. The file is only read, in pieces, so it may be larger
// than memory. Throws std::system_error if it can't be read.
std::set<std::string> FingerprintsIn(const std::string& path);

#endif
