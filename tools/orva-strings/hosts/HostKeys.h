#ifndef ORVALANGUAGE_TOOLS_HOSTS_HOSTKEYS_H
#define ORVALANGUAGE_TOOLS_HOSTS_HOSTKEYS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tools/orva-strings/document/StringsReader.h"

// A key that a host may look up.
struct HostKey {
    std::string_view key;
    std::string text;  // empty if it must not be shown
    bool isShown;
    StringsLine line;
};

// The keys of a section, with the reader at its header: each once, in the file's order, that of the
// header first. What was meant as a comment is left out, even if the library reads it as an entry.
// The text of the header, of a protected entry, and of whatever was probably meant as one is not
// shown.
std::vector<HostKey> ReadHostKeys(StringsReader section);

#endif
