// What protect, reveal and rekey do to a document.
#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_PROTECTEDENTRIES_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_PROTECTEDENTRIES_H

#include "protection/ProtectedForm.h"
#include "tools/orva-strings/cli/Finding.h"
#include "tools/orva-strings/document/StringsDocument.h"

// Each of the three changes the entries of all sections whose key begins with "IDE". With an error
// among the findings, the document may be half changed and is no longer of use.

// Puts readable values into the stored form; stored ones stay. A value that looks stored but does
// not decode is a finding, unless isForced, which takes it for a text.
Findings ProtectEntries(StringsDocument& document, const ProtectionKeys& keys, bool isForced);

// Puts stored values back into readable form; readable ones stay.
Findings RevealEntries(StringsDocument& document, const ProtectionKeys& keys);

// Puts values stored with one key into what another makes of them. Readable ones and those that are
// stored with the other already stay.
Findings RekeyEntries(StringsDocument& document, const ProtectionKeys& from,
                      const ProtectionKeys& to);

#endif
