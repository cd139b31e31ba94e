#include "tools/orva-strings/document/ProtectedEntries.h"

#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "tools/orva-strings/document/NearMisses.h"
#include "tools/orva-strings/document/NoSection.h"
#include "tools/orva-strings/protection/ProtectedText.h"

namespace {

Finding Error(std::size_t line, std::string_view key, const char* what) {
    return {Severity::kError, line, std::string(key) + ": " + what};
}

Finding Warning(std::size_t line, std::string_view key, const char* what) {
    return {Severity::kWarning, line, std::string(key) + ": " + what};
}

const char* WhyNotRead(Obstacle obstacle) {
    switch (obstacle) {
        case Obstacle::kNoSectionYet:
            return "this entry is not read, because it comes before the first section";
        case Obstacle::kByteOrderMark:
            return "this entry is not read, because a byte-order mark comes right before it";
        case Obstacle::kCarriageReturn:
            break;
    }
    return "this entry is not read, because it follows a carriage return, which does not end a "
           "line";
}

bool IsBlank(std::string_view text) {
    return text.find_first_not_of(" \t") == std::string_view::npos;
}

// Whether someone who opens the file can read a text in the entry's line.
bool IsReadable(const StringsEntry& entry) {
    return !IsBlank(entry.beforeQuote) || !(IsBlank(entry.value) || LooksStored(entry.value));
}

// Whether the quotes are empty and the text after them was probably meant to be inside: it begins
// with a word, unlike a note.
bool HasLostItsQuotes(const StringsEntry& entry) {
    const std::size_t start = entry.afterQuote.find_first_not_of(" \t");
    return entry.value.empty() && start != std::string_view::npos &&
           std::strchr(";#/,*-", entry.afterQuote[start]) == nullptr;
}

Finding DoesNotDecode(std::size_t line, const StringsEntry& entry) {
    return Error(
        line, entry.key,
        "the value looks stored but does not decode: it was damaged or made with another key");
}

// What a command does to protected entries.
struct Change {
    // The value that replaces an entry's, if any. Adds findings about it.
    std::function<std::optional<std::string>(std::size_t line, const StringsEntry&, Findings&)>
        newValue;
    Severity beforeQuote;  // of the finding about text before the value's quotes, which stays
    bool warnsOfReadable;  // whether to search for what was probably meant as a protected entry
};

// Changes the protected entry on a line. Returns the line's text afterwards.
std::string_view ChangeEntry(StringsDocument& document, const StringsLine& line,
                             const StringsEntry& entry, const Change& change, Findings& findings) {
    if (!IsBlank(entry.beforeQuote)) {
        findings.push_back({change.beforeQuote, line.number,
                            std::string(entry.key) +
                                ": the value begins at the first quote; the text before it stays "
                                "readable (is the opening quote missing?)"});
    }
    const std::optional<std::string> value = change.newValue(line.number, entry, findings);
    if (!value) {
        return line.text;
    }
    const std::optional<std::string_view> text = document.SetValue(line, *value);
    if (!text) {
        findings.push_back(
            Error(line.number, entry.key,
                  "the text can't be written as a quoted value that reads back the same"));
    }
    return text.value_or(line.text);
}

Findings ChangeProtected(StringsDocument& document, const Change& change) {
    Findings findings;
    StringsReader lines = document.Lines();
    while (lines.Next()) {
        const StringsLine& line = lines.Line();
        FindMisplaced(lines, [&](std::string_view key, Obstacle obstacle) {
            findings.push_back(Error(line.number, key, WhyNotRead(obstacle)));
        });
        std::string_view text = line.text;
        const std::optional<StringsEntry> entry = lines.Entry();
        if (entry && IsProtectedKey(entry->key.data())) {
            text = ChangeEntry(document, line, *entry, change, findings);
        }
        // Not before the change, so that nothing inside a text that gets encrypted is reported.
        if (change.warnsOfReadable) {
            FindNearProtected(text, [&](const StringsEntry& near) {
                if (IsReadable(near)) {
                    findings.push_back(
                        Warning(line.number, near.key,
                                "this looks like a protected entry but is not one; its text stays "
                                "readable"));
                }
            });
        }
    }
    if (!lines.IsInSection()) {
        findings.push_back(NoSection());
    }
    return findings;
}

}  // namespace

Findings ProtectEntries(StringsDocument& document, const ProtectionKeys& keys, bool isForced) {
    const auto protect = [&](std::size_t line, const StringsEntry& entry,
                             Findings& findings) -> std::optional<std::string> {
        if (LooksStored(entry.value)) {
            if (DecodeProtectedText(keys, entry.value)) {
                return std::nullopt;
            }
            if (!isForced) {
                findings.push_back(DoesNotDecode(line, entry));
                return std::nullopt;
            }
        }
        if (entry.value.find('\0') != std::string_view::npos) {
            findings.push_back(Error(
                line, entry.key,
                "the text contains a NUL byte, so a host would see only what comes before it"));
            return std::nullopt;
        }
        if (HasLostItsQuotes(entry)) {
            findings.push_back(Warning(
                line, entry.key, "the value is empty; the text after its quotes stays readable"));
        }
        return EncodeProtectedText(keys, entry.value);
    };
    return ChangeProtected(document, {protect, Severity::kError, true});
}

Findings RevealEntries(StringsDocument& document, const ProtectionKeys& keys) {
    const auto reveal = [&](std::size_t line, const StringsEntry& entry, Findings& findings) {
        std::optional<std::string> text = DecodeProtectedText(keys, entry.value);
        if (!text && LooksStored(entry.value)) {
            findings.push_back(DoesNotDecode(line, entry));
        }
        return text;
    };
    return ChangeProtected(document, {reveal, Severity::kWarning, false});
}

Findings RekeyEntries(StringsDocument& document, const ProtectionKeys& from,
                      const ProtectionKeys& to) {
    const auto rekey = [&](std::size_t line, const StringsEntry& entry, Findings& findings) {
        std::optional<std::string> value = DecodeProtectedText(from, entry.value);
        if (value) {
            value = EncodeProtectedText(to, *value);
        } else if (LooksStored(entry.value) && !DecodeProtectedText(to, entry.value)) {
            findings.push_back(DoesNotDecode(line, entry));
        }
        return value;
    };
    return ChangeProtected(document, {rekey, Severity::kError, false});
}
