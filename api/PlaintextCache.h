#ifndef ORVALANGUAGE_API_PLAINTEXTCACHE_H
#define ORVALANGUAGE_API_PLAINTEXTCACHE_H

#include "strings/StringMap.h"

// The protected texts decoded so far, by key. ZuGetLocalizedString adds entries and nothing removes
// them: a text that was handed out stays valid until the process exits, across reloads too.
extern StringMap gMapDecodedStrings;

#endif
