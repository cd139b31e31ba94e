#ifndef ORVALANGUAGE_STRINGS_LOCALIZEDSTRINGS_H
#define ORVALANGUAGE_STRINGS_LOCALIZEDSTRINGS_H

#include "strings/StringMap.h"

// The table of the loaded section, which a host sees as KorString::gMapLocalizedStrings. The
// library itself never uses that name: it may be bound to another copy of the library.
extern StringMap gMapLocalizedStrings;

#endif
