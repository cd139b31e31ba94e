#include "tools/orva-strings/document/SecretTexts.h"

#include <algorithm>

#include "tools/orva-strings/document/LineText.h"
#include "tools/orva-strings/document/MeantProtected.h"
#include "tools/orva-strings/document/NearMisses.h"
#include "tools/orva-strings/document/StringsReader.h"

namespace {

// Adds the value of an entry, unless it only repeats the key, and what the key holds after the name,
// such as where a colon was meant as the equals sign.
void AddTexts(const StringsEntry& entry, SecretTexts& secrets) {
    if (entry.value != entry.key) {
        secrets.Add(entry.value);
    }
    const std::string_view rest = AfterMeantKey(entry.key);
    secrets.Add(TrimBlanks(rest.substr(0, rest.rfind('"'))));
}

}  // namespace

void SecretTexts::Add(std::string_view text) {
    if (TrimBlanks(text).empty()) {
        return;
    }
    const auto [added, isNew] = m_texts.emplace(text);
    if (isNew && added->size() >= kLong) {
        m_longTexts[std::string_view(*added).substr(0, kLong)].push_back(*added);
    }
}

bool SecretTexts::AreIn(std::string_view text) const {
    if (m_longTexts.empty()) {
        return false;
    }
    for (; text.size() >= kLong; text.remove_prefix(1)) {
        const auto found = m_longTexts.find(text.substr(0, kLong));
        if (found != m_longTexts.end() &&
            std::any_of(found->second.begin(), found->second.end(), [&](std::string_view secret) {
                return text.substr(0, secret.size()) == secret;
            })) {
            return true;
        }
    }
    return false;
}

SecretTexts FindSecretTexts(std::string_view bytes) {
    SecretTexts secrets;
    std::string buffer;
    for (StringsReader line(bytes); line.Next();) {
        std::string_view text = line.Line().text;
        FindNearProtected(text, [&](const StringsEntry& entry) { AddTexts(entry, secrets); });
        while (!text.empty()) {  // and what follows each carriage return
            const std::string_view piece = text.substr(0, text.find('\r'));
            const auto entry = ReadEntry(piece, buffer);
            if (entry && BeginsAsProtected(MeantKey(entry->key))) {
                AddTexts(*entry, secrets);
            }
            text.remove_prefix(std::min(piece.size() + 1, text.size()));
        }
    }
    return secrets;
}
