// The library's static objects, in one source: they are made in the order of their definitions when
// the library is loaded, and destroyed in reverse at exit, whatever order a linker takes sources in.
#include <OrvaLanguage/KorString.h>

#include "api/DecodeProtectedString.h"
#include "api/PlaintextCache.h"
#include "crypt/CCryptAES.h"
#include "strings/LocalizedStrings.h"
#include "strings/StringMapView.h"

StringMap gMapDecodedStrings;
StringMap gMapLocalizedStrings;
std::recursive_mutex gDecodeMutex;
std::mutex gCryptMutex;

namespace {

constexpr StringMapView kLocalizedStringsView(gMapLocalizedStrings);

}  // namespace

// A reference, constant-initialised: a program that takes a copy of it, as ELF lets it, has the same
// table, and may ask for its size or for a key before the library's initialisers have run.
const KorStringMap& KorString::gMapLocalizedStrings = kLocalizedStringsView;
