// What the tool does with a strings file, apart from files and options: each command works on a
// document and says what it found.
#ifndef ORVALANGUAGE_TOOLS_COMMANDS_H
#define ORVALANGUAGE_TOOLS_COMMANDS_H

#include <ostream>
#include <string>
#include <vector>

#include "protection/ProtectedForm.h"
#include "tools/orva-strings/cli/Finding.h"
#include "tools/orva-strings/document/StringsDocument.h"

// Each of the three changes the entries of all sections whose key begins with "IDE". With an error
// among the findings the document may be half changed: it is then of no use any more.

// Puts readable values into the stored form; stored ones stay. A value that looks stored but does
// not decode is a finding, unless isForced, which takes it for a text.
Findings Protect(StringsDocument& document, const ProtectionKeys& keys, bool isForced);

// Puts stored values back into readable form; readable ones stay.
Findings Reveal(StringsDocument& document, const ProtectionKeys& keys);

// Puts values stored with one key into what another makes of them. Readable ones and those that are
// stored with the other already stay.
Findings Rekey(StringsDocument& document, const ProtectionKeys& from, const ProtectionKeys& to);

// Writes a table of the document's sections.
Findings ListSections(const StringsDocument& document, std::ostream& out);

// What to show.
struct ShowRequest {
    std::string language;           // empty: the first section
    bool hasFallback = false;       // the first section, too, if the language has none
    std::vector<std::string> keys;  // empty: every key of the section
    bool isRevealed = false;        // protected texts too
};

// Loads a section through the library and writes what it answers. No section, or a key without an
// answer, is an error.
Findings Show(const StringsDocument& document, const ShowRequest& request, std::ostream& out);

#endif
