#ifndef ORVALANGUAGE_API_PLAINTEXTCACHE_H
#define ORVALANGUAGE_API_PLAINTEXTCACHE_H

#include "strings/StringMap.h"

// The protected texts decoded so far, by key. Entries are only ever added, by ZuGetLocalizedString:
// a text that was handed out stays valid to the end of the process, over reloads too.
extern StringMap gMapDecodedStrings;

#endif
