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
    // The key as the library reads it probably holds the text of a protected entry, so it must not be
    // shown. Then key is only the name that was meant, or empty.
    bool holdsSecret = false;
};

// The keys of a section, with the reader at its header: each once, in the file's order, that of the
// header first. What was meant as a comment is left out, even if the library reads it as an entry.
// No text is shown of the header, of a protected entry or what was probably meant as one, or that
// contains the text of any of those in the file, whose bytes these are.
std::vector<HostKey> ReadHostKeys(StringsReader section, std::string_view bytes);

#endif
