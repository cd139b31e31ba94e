#ifndef ORVALANGUAGE_TOOLS_CHECKS_TRANSLATIONS_H
#define ORVALANGUAGE_TOOLS_CHECKS_TRANSLATIONS_H

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "protection/ProtectedForm.h"
#include "tools/orva-strings/checks/TranslationChecks.h"
#include "tools/orva-strings/cli/Finding.h"
#include "tools/orva-strings/document/KeySet.h"

// How the translation of a text is, compared with the reference's.
enum class TextState { kTranslated, kSame, kMissing, kStale, kEmpty };
constexpr std::size_t kTextStates = 5;

// What a section has for the keys of the reference.
struct Translation {
    std::string_view name;  // of the section, as meant
    std::size_t line;       // its header's, from 0
    SectionEntries entries;
    std::vector<TextState> states;  // of each key of the reference, in its order
    std::array<std::size_t, kTextStates> counts = {};

    std::size_t CountOf(TextState state) const { return counts[static_cast<std::size_t>(state)]; }

    // How many of its entries are protected.
    std::size_t ProtectedCount() const;

    // How many of the reference's texts it has: neither missing nor stale nor empty.
    std::size_t TranslatedCount() const {
        return CountOf(TextState::kTranslated) + CountOf(TextState::kSame);
    }

    // The same in percent, rounded down.
    std::size_t Percent() const;
};

// A file's sections as they were meant, each the first of its name.
struct Translations {
    std::size_t reference;               // the index of the section that others are compared with
    std::vector<Translation> languages;  // in file order

    const Translation& Reference() const { return languages[reference]; }

    // The keys whose translation is stale in the section whose header is this line, from 0.
    KeySet StaleKeys(std::size_t header) const;
};

// Reads the translations in the bytes of a file, which must outlive the result. reference names the
// section that others are compared with; empty: the first. base has the bytes of an earlier state of
// the file, to find what is stale. Returns nothing, and says why, if the file has no such section.
std::optional<Translations> ReadTranslations(std::string_view bytes, const std::string& reference,
                                             const std::optional<std::string_view>& base,
                                             const ProtectionKeys& keys, Findings& findings);

#endif
