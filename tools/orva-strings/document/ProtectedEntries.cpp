#include "tools/orva-strings/document/ProtectedEntries.h"

#include <cstring>
#include <optional>

#include "tools/orva-strings/document/NoSection.h"
#include "tools/orva-strings/protection/ProtectedText.h"

namespace {

using Entry = StringsDocument::Entry;

Finding Error(std::size_t line, const std::string& key, const char* what) {
    return {Severity::kError, line, key + ": " + what};
}

const char* WhyNotRead(StringsDocument::Obstacle obstacle) {
    switch (obstacle) {
        case StringsDocument::Obstacle::kNoSectionYet:
            return "this entry is not read, because it comes before the first section";
        case StringsDocument::Obstacle::kByteOrderMark:
            return "this entry is not read, because a byte-order mark comes right before it";
        case StringsDocument::Obstacle::kCarriageReturn:
            break;
    }
    return "this entry is not read, because it follows a carriage return, which does not end a "
           "line";
}

bool IsBlank(const std::string& text) {
    return text.find_first_not_of(" \t") == std::string::npos;
}

// Whether someone who opens the file can read a text in the entry's line.
bool IsReadable(const Entry& entry) {
    return !IsBlank(entry.beforeQuote) || !(IsBlank(entry.value) || LooksStored(entry.value));
}

// Whether the quotes are empty and the text after them was probably meant to be inside: it begins
// with a word, unlike a note.
bool HasLostItsQuotes(const Entry& entry) {
    const std::size_t start = entry.afterQuote.find_first_not_of(" \t");
    return entry.value.empty() && start != std::string::npos &&
           std::strchr(";#/,*-", entry.afterQuote[start]) == nullptr;
}

// Sets each protected entry to the value that newValue returns, if any. Text before the value's
// quotes stays, and is a finding of the severity beforeQuote.
template <typename NewValue>
Findings ChangeProtected(StringsDocument& document, Severity beforeQuote,
                         const NewValue& newValue) {
    Findings findings;
    for (const StringsDocument::Misplaced& misplaced : document.MisplacedLines()) {
        findings.push_back(Error(misplaced.line, misplaced.key, WhyNotRead(misplaced.obstacle)));
    }
    const std::vector<StringsDocument::Section> sections = document.Sections();
    if (sections.empty()) {
        findings.push_back(NoSection());
    }
    for (const StringsDocument::Section& section : sections) {
        for (const Entry& entry : section.entries) {
            if (!IsProtectedKey(entry.key.c_str())) {
                continue;
            }
            if (!IsBlank(entry.beforeQuote)) {
                findings.push_back({beforeQuote, entry.line,
                                    entry.key + ": the value begins at the first quote; the text "
                                                "before it stays readable (is the opening quote "
                                                "missing?)"});
            }
            const std::optional<std::string> value = newValue(entry, findings);
            if (value && !document.SetValue(entry.line, *value)) {
                findings.push_back(
                    Error(entry.line, entry.key,
                          "the text can't be written as a quoted value that reads back the same"));
            }
        }
    }
    return findings;
}

Finding DoesNotDecode(const Entry& entry) {
    return Error(
        entry.line, entry.key,
        "the value looks stored but does not decode: it was damaged or made with another key");
}

}  // namespace

Findings ProtectEntries(StringsDocument& document, const ProtectionKeys& keys, bool isForced) {
    Findings findings = ChangeProtected(
        document, Severity::kError,
        [&](const Entry& entry, Findings& found) -> std::optional<std::string> {
            if (DecodeProtectedText(keys, entry.value)) {
                return std::nullopt;
            }
            if (!isForced && LooksStored(entry.value)) {
                found.push_back(DoesNotDecode(entry));
                return std::nullopt;
            }
            if (entry.value.find('\0') != std::string::npos) {
                found.push_back(Error(
                    entry.line, entry.key,
                    "the text contains a NUL byte, so a host would see only what comes before it"));
                return std::nullopt;
            }
            if (HasLostItsQuotes(entry)) {
                found.push_back({Severity::kWarning, entry.line,
                                 entry.key + ": the value is empty; the text after its quotes "
                                             "stays readable"});
            }
            return EncodeProtectedText(keys, entry.value);
        });
    // Searched only now, so that nothing inside a text that gets encrypted is reported.
    for (const Entry& entry : document.NearProtected()) {
        if (IsReadable(entry)) {
            findings.push_back({Severity::kWarning, entry.line,
                                entry.key +
                                    ": this looks like a protected entry but is not one; its "
                                    "text stays readable"});
        }
    }
    return findings;
}

Findings RevealEntries(StringsDocument& document, const ProtectionKeys& keys) {
    const auto reveal = [&](const Entry& entry, Findings& findings) {
        std::optional<std::string> text = DecodeProtectedText(keys, entry.value);
        if (!text && LooksStored(entry.value)) {
            findings.push_back(DoesNotDecode(entry));
        }
        return text;
    };
    return ChangeProtected(document, Severity::kWarning, reveal);
}

Findings RekeyEntries(StringsDocument& document, const ProtectionKeys& from,
                      const ProtectionKeys& to) {
    const auto rekey = [&](const Entry& entry, Findings& findings) {
        std::optional<std::string> value = DecodeProtectedText(from, entry.value);
        if (value) {
            value = EncodeProtectedText(to, *value);
        } else if (LooksStored(entry.value) && !DecodeProtectedText(to, entry.value)) {
            findings.push_back(DoesNotDecode(entry));
        }
        return value;
    };
    return ChangeProtected(document, Severity::kError, rekey);
}
