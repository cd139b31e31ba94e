#include "tools/orva-strings/document/LoadedSection.h"

#include <cstring>
#include <stdexcept>

#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>

#include "api/PlaintextCache.h"
#include "support/TemporaryBundle.h"
#include "tools/orva-strings/protection/ProtectedText.h"
#include "tools/orva-strings/system/Files.h"
#include "tools/orva-strings/system/SignalBlock.h"

namespace {

void LoadByCopy(std::string_view bytes, const std::string& language) {
    constexpr char kName[] = "strings";
    const SignalBlock held;
    const TemporaryBundle bundle;
    const NamelessFile copy(bundle.Resources() / kName, bytes);
    bundle.Link(kName, copy.Path());
    if (ZuLoadStrings(language.c_str(), kName, bundle.Get()) < 1) {
        throw std::runtime_error(bundle.Resources().string() +
                                 ": the library could not load the copy made there");
    }
}

// Throws unless the library's table holds the whole section at whose header the reader is: a load
// that runs out of memory or fails to read treats that as the end of the file.
void CheckLoaded(StringsReader section) {
    const KorStringMap& table = KorString::gMapLocalizedStrings;
    std::string buffer;
    const auto header = table.Find("QVLANG");
    bool isWhole = header && header->value == ReadEntry(section.Line().text, buffer)->value;
    while (isWhole && section.Next() && !section.IsHeader()) {
        const auto entry = section.Entry();
        isWhole = !entry || table.Find(entry->key);
    }
    if (!isWhole) {
        throw std::runtime_error("the library could not load the whole section");
    }
}

}  // namespace

void LoadSection(std::string_view bytes, const std::string& language,
                 const StringsReader& section) {
    gMapDecodedStrings.Clear();  // the library would keep an earlier section's texts
    LoadByCopy(bytes, language);
    CheckLoaded(section);
}

std::optional<std::string> AnswerFor(std::string_view key, const ProtectionKeys& keys,
                                     bool isOwnKey) {
    if (key.find('\0') != std::string_view::npos) {
        return std::nullopt;
    }
    const char* const stored = KorGetLocalizedString(key.data());
    if (stored == nullptr || !IsProtectedKey(key.data())) {
        const char* const text = ZuGetLocalizedString(key.data());
        return text == nullptr ? std::nullopt : std::optional<std::string>(text);
    }
    std::optional<std::string> decoded = DecodeProtectedText(keys, stored);
    if (decoded) {
        decoded->resize(std::strlen(decoded->c_str()));  // as a host sees it
    }
    if (isOwnKey) {
        const char* const text = ZuGetLocalizedString(key.data());
        if (text == nullptr ? decoded.has_value() : text != decoded) {
            throw std::runtime_error(std::string(key) + ": the library could not decode the value");
        }
    }
    return decoded;
}
