#include "tools/orva-strings/checks/Translations.h"

#include <algorithm>
#include <unordered_set>

#include "strings/Line.h"
#include "tools/orva-strings/checks/MeantReader.h"
#include "tools/orva-strings/checks/ProtectedChecks.h"
#include "tools/orva-strings/cli/Nearest.h"
#include "tools/orva-strings/document/NoSection.h"
#include "tools/orva-strings/document/SectionNames.h"

namespace {

// Compares texts of the reference with those of another section.
class Comparison {
public:
    // earlier may be null.
    Comparison(EarlierFile* earlier, const ProtectionKeys& keys)
        : m_earlier(earlier), m_keys(keys) {}

    TextState StateOf(const SectionEntries::Entry& reference, const SectionEntries::Entry* entry) {
        if (entry == nullptr) {
            return TextState::kMissing;
        }
        const auto before = DecodedText(reference.entry, m_keys, m_referenceBuffer);
        const auto text = DecodedText(entry->entry, m_keys, m_buffer);
        if (!before || !text) {
            return TextState::kTranslated;
        }
        if (text->empty() && !before->empty()) {
            return TextState::kEmpty;
        }
        if (m_earlier != nullptr && m_earlier->IsStale(reference.key, *before, *text, m_keys)) {
            return TextState::kStale;
        }
        return *before == *text ? TextState::kSame : TextState::kTranslated;
    }

private:
    EarlierFile* m_earlier;
    const ProtectionKeys& m_keys;
    std::string m_referenceBuffer;
    std::string m_buffer;
};

std::vector<Translation> ReadSections(std::string_view bytes) {
    std::vector<Translation> sections;
    std::unordered_set<std::string_view, HashWithoutCase, EqualWithoutCase> names;
    for (MeantReader line(bytes); line.Next();) {
        if (line.Kind() == LineKind::kHeader) {
            const std::string_view name = MeantSectionName(line.SectionName());
            if (names.insert(ComparedName(name)).second) {
                sections.push_back({name, line.Line().number, SectionEntries(line), {}, {}});
            }
        }
    }
    return sections;
}

}  // namespace

std::size_t Translation::ProtectedCount() const {
    const auto& all = entries.All();
    return static_cast<std::size_t>(std::count_if(
        all.begin(), all.end(), [](const auto& entry) { return IsProtected(entry.key); }));
}

std::size_t Translation::Percent() const {
    return states.empty() ? 100 : TranslatedCount() * 100 / states.size();
}

KeySet Translations::StaleKeys(std::size_t header) const {
    const auto language =
        std::find_if(languages.begin(), languages.end(),
                     [&](const Translation& other) { return other.line == header; });
    KeySet keys;
    if (language == languages.end()) {
        return keys;
    }
    const auto& entries = Reference().entries.All();
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (language->states[i] == TextState::kStale) {
            keys.insert(entries[i].key);
        }
    }
    return keys;
}

std::optional<Translations> ReadTranslations(std::string_view bytes, const std::string& reference,
                                             const std::optional<std::string_view>& base,
                                             const ProtectionKeys& keys, Findings& findings) {
    Translations result = {0, ReadSections(bytes)};
    std::vector<Translation>& languages = result.languages;
    if (languages.empty()) {
        findings.push_back(NoSection());
        return std::nullopt;
    }
    const auto found =
        std::find_if(languages.begin(), languages.end(), [&](const Translation& language) {
            return reference.empty() || IsName(language.name, reference.c_str());
        });
    if (found == languages.end()) {
        Nearest nearest(reference);
        std::for_each(languages.begin(), languages.end(),
                      [&](const Translation& language) { nearest.Offer(language.name); });
        findings.push_back({Severity::kError, std::nullopt,
                            "there is no section " + reference + nearest.DidYouMean()});
        return std::nullopt;
    }
    result.reference = static_cast<std::size_t>(found - languages.begin());
    std::optional<EarlierFile> earlier;
    if (base) {
        earlier.emplace(*base, found->name);
        if (!earlier->HasReference()) {
            findings.push_back({Severity::kError, std::nullopt,
                                "the earlier file has no section " + std::string(found->name)});
            return std::nullopt;
        }
    }
    Comparison comparison(earlier ? &*earlier : nullptr, keys);
    for (Translation& language : languages) {
        if (earlier) {
            earlier->EnterSection(language.name);
        }
        for (const SectionEntries::Entry& entry : found->entries.All()) {
            const bool isReference = &language == &*found;
            const TextState state =
                isReference ? TextState::kTranslated
                            : comparison.StateOf(entry, language.entries.Find(entry.key));
            language.states.push_back(state);
            ++language.counts[static_cast<std::size_t>(state)];
        }
    }
    return result;
}
