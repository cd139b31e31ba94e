#include <OrvaLanguage/KorString.h>

#include "strings/LocalizedStrings.h"

const char* KorGetLocalizedString(const char* key) {
    if (key == nullptr) {
        return nullptr;
    }
    const StringMap::Entry* const entry = gMapLocalizedStrings.Find(key);
    return entry == nullptr ? nullptr : entry->Value().data();
}
