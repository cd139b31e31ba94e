#include "tools/orva-strings/document/Unanswered.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>

#include <OrvaLanguage/KorString.h>

#include "tools/orva-strings/cli/Nearest.h"
#include "tools/orva-strings/protection/ProtectedText.h"

namespace {

// Why the library answers null for a key of the section.
const char* WhyNull(std::string_view key) {
    if (key.find('\0') != std::string_view::npos) {
        return "the key contains a NUL byte, so ZuGetLocalizedString can't look it up";
    }
    return LooksStored(KorGetLocalizedString(key.data()))
               ? "the value does not decode: it was damaged or made with another key"
               : "the value is not protected, so the library answers null";
}

}  // namespace

void ExplainUnanswered(const std::vector<std::string_view>& keys, StringsReader section,
                       bool isOneOfSeveral, Findings& findings) {
    std::map<std::string_view, std::optional<std::size_t>> lines;
    std::map<std::string_view, Nearest> missing;
    for (const std::string_view key : keys) {
        lines[key];
        if (!KorString::gMapLocalizedStrings.Find(key)) {
            missing.try_emplace(key, key);
        }
    }
    std::string what = "there is no such key in the section";
    std::optional<std::size_t> header;
    if (isOneOfSeveral) {
        what += " '" + std::string(section.SectionName()) + '\'';
        header = section.Line().number;
    }
    while (!keys.empty() && section.Next() && !section.IsHeader()) {
        const auto entry = section.Entry();
        if (!entry) {
            continue;
        }
        const auto found = lines.find(entry->key);
        if (found != lines.end() && !found->second) {
            found->second = section.Line().number;
        }
        for (auto& [key, nearest] : missing) {
            nearest.Offer(entry->key);
        }
    }
    for (const std::string_view key : keys) {
        const auto found = missing.find(key);
        const bool isMissing = found != missing.end();
        findings.push_back({Severity::kError, isMissing ? header : lines[key],
                            std::string(key) + ": " +
                                (isMissing ? what + found->second.DidYouMean() : WhyNull(key))});
    }
}
