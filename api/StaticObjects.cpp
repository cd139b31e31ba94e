// The library's static objects, in one source to fix their order: they are constructed in the order
// of their definitions when the library is loaded, and destroyed in reverse at exit, whatever the
// order in which a linker takes the sources.
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

// A constant-initialised reference: a program's copy of it, which ELF allows, refers to the same
// table, and the program may ask for its size or a key before the library's initialisers have run.
const KorStringMap& KorString::gMapLocalizedStrings = kLocalizedStringsView;
