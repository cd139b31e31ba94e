#include <OrvaLanguage/KorString.h>

const char* KorGetLocalizedString(const char* key) {
    if (key == nullptr) {
        return nullptr;
    }
    const StringMap::Entry* const entry = KorString::gMapLocalizedStrings.Find(key);
    return entry == nullptr ? nullptr : entry->Value().data();
}
