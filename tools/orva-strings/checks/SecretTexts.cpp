#include "tools/orva-strings/checks/SecretTexts.h"

#include <algorithm>

#include "tools/orva-strings/document/LineText.h"

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
