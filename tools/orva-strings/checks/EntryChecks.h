// The rules about a single line: its bytes, and the entry that it is.
#ifndef ORVALANGUAGE_TOOLS_CHECKS_ENTRYCHECKS_H
#define ORVALANGUAGE_TOOLS_CHECKS_ENTRYCHECKS_H

#include "tools/orva-strings/checks/FindingCollector.h"
#include "tools/orva-strings/checks/MeantReader.h"

// Checks the bytes of a line of any kind. isLost says whether a header or a protected entry is lost
// in it, after a carriage return.
void CheckBytes(const StringsLine& line, bool isLost, FindingCollector& findings);

// Checks the key and the value of an entry in a section.
void CheckEntry(const MeantReader& line, FindingCollector& findings);

#endif
