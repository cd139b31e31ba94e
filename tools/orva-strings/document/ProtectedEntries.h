// What protect, reveal and rekey do to a document.
#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_PROTECTEDENTRIES_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_PROTECTEDENTRIES_H

#include "protection/ProtectedForm.h"
#include "tools/orva-strings/cli/Finding.h"
#include "tools/orva-strings/document/StringsDocument.h"

// Each changes the entries of all sections whose key begins with "IDE", in a document that has no
// changes yet. If a finding is an error, the document may be half changed and must not be used
// further.

// Converts readable values to the stored form; stored ones stay. A value that looks stored but does
// not decode is an error, or counts as readable if isForced.
Findings ProtectEntries(StringsDocument& document, const ProtectionKeys& keys, bool isForced);

// Converts stored values back to readable text; readable ones stay. So does what is an error, so that
// the document may be used further.
Findings RevealEntries(StringsDocument& document, const ProtectionKeys& keys);

// Converts values stored with the key `from` to the key `to`. Readable ones and those already
// stored with `to` stay.
Findings RekeyEntries(StringsDocument& document, const ProtectionKeys& from,
                      const ProtectionKeys& to);

#endif
