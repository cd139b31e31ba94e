#include "tools/orva-strings/Commands.h"

#include <algorithm>
#include <cstring>
#include <iomanip>
#include <map>
#include <optional>
#include <set>
#include <stdexcept>

#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>

#include "support/TemporaryBundle.h"
#include "tools/orva-strings/cli/Printable.h"
#include "tools/orva-strings/protection/MasterKey.h"
#include "tools/orva-strings/protection/ProtectedText.h"
#include "tools/orva-strings/system/Files.h"
#include "tools/orva-strings/system/SignalBlock.h"

namespace {

using Entry = StringsDocument::Entry;

constexpr char kHeaderKey[] = "QVLANG";

Finding Error(std::size_t line, const std::string& key, const char* what) {
    return {Severity::kError, line, key + ": " + what};
}

Finding NoSection() {
    return {Severity::kError, std::nullopt, "there is no section in it"};
}

const char* WhyNotRead(StringsDocument::Obstacle obstacle) {
    switch (obstacle) {
        case StringsDocument::Obstacle::kNoSectionYet:
            return "not read, because it comes before the first section";
        case StringsDocument::Obstacle::kByteOrderMark:
            return "not read, because a byte-order mark is in front of it";
        case StringsDocument::Obstacle::kCarriageReturn:
            break;
    }
    return "not read, because it follows a carriage return, which ends no line";
}

bool IsBlank(const std::string& text) {
    return text.find_first_not_of(" \t") == std::string::npos;
}

// Whether a person who opens the file can read a text in the entry's line.
bool IsReadable(const Entry& entry) {
    return !IsBlank(entry.beforeQuote) || !(IsBlank(entry.value) || LooksStored(entry.value));
}

// Whether a text was probably meant to be between the quotes after which it stands, which are empty:
// it begins with a word, and not as a note does.
bool HasLostItsQuotes(const Entry& entry) {
    const std::size_t start = entry.afterQuote.find_first_not_of(" \t");
    return entry.value.empty() && start != std::string::npos &&
           std::strchr(";#/,*-", entry.afterQuote[start]) == nullptr;
}

// Asks for each protected entry's new value, which may be none, and sets it. A text in front of the
// value's quotes, which nothing changes, is a finding of the severity given.
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

// The line of the first entry of each key.
std::map<std::string, std::size_t> LinesOf(const StringsDocument::Section& section) {
    std::map<std::string, std::size_t> lines;
    for (const Entry& entry : section.entries) {
        lines.emplace(entry.key, entry.line);
    }
    return lines;
}

// What a host gets for a key. Throws if that is not what is stored: a lookup that runs out of
// memory tells nobody, and answers null or an empty text.
const char* AnswerFor(const std::string& key, const ProtectionKeys& keys) {
    const char* const text = ZuGetLocalizedString(key.c_str());
    const char* const stored = KorGetLocalizedString(key.c_str());
    if (stored != nullptr && IsProtectedKey(key.c_str())) {
        const std::optional<std::string> decoded = DecodeProtectedText(keys, stored);
        if (text == nullptr ? decoded.has_value()
                            : !decoded || std::strcmp(text, decoded->c_str()) != 0) {
            throw std::runtime_error(key + ": the library could not decode it");
        }
    }
    return text;
}

// Why the library answers null for a key.
const char* WhyNull(const std::string& key) {
    if (key.find('\0') != std::string::npos) {
        return "it has a NUL byte in it, so that no host can ask for it";
    }
    const char* const stored = KorGetLocalizedString(key.c_str());
    if (stored == nullptr) {
        return "there is no such key in the section";
    }
    return LooksStored(stored)
               ? "the value does not decode: it was damaged or made with another key"
               : "the value is not protected, so it has no answer";
}

// The keys that a load makes entries of: each once, and the header's.
std::set<std::string> KeysOf(const StringsDocument::Section& section) {
    std::set<std::string> keys = {kHeaderKey};
    for (const Entry& entry : section.entries) {
        keys.insert(entry.key);
    }
    return keys;
}

// Has the library load a section of these bytes, from a copy without a name. The section must be
// there: for a missing one the library would read the copy twice.
void LoadByCopy(const std::string& bytes, const std::string& language) {
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

// Throws unless the library's table is this section, whole: a load ends the file where memory runs
// out or a read fails, as if the rest were not there.
void CheckLoaded(const StringsDocument::Section& section) {
    std::string key;
    std::string name;
    KorString::GetLocalizedElement(KorString::LANG_STATEMENT + section.name, &key, &name);
    const KorStringMap& table = KorString::gMapLocalizedStrings;
    const auto header = table.Find(kHeaderKey);
    if (!header || header->value != name || table.Size() != KeysOf(section).size()) {
        throw std::runtime_error("the section could not be loaded whole");
    }
}

}  // namespace

Findings Protect(StringsDocument& document, const ProtectionKeys& keys, bool isForced) {
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
                found.push_back(Error(entry.line, entry.key, "the text has a NUL byte in it"));
                return std::nullopt;
            }
            if (HasLostItsQuotes(entry)) {
                found.push_back({Severity::kWarning, entry.line,
                                 entry.key + ": the value is empty; the text after its quotes "
                                             "stays readable"});
            }
            return EncodeProtectedText(keys, entry.value);
        });
    // Looked for now, so that nothing within a text that is encrypted is taken for a line near one.
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

Findings Reveal(StringsDocument& document, const ProtectionKeys& keys) {
    const auto reveal = [&](const Entry& entry, Findings& findings) {
        std::optional<std::string> text = DecodeProtectedText(keys, entry.value);
        if (!text && LooksStored(entry.value)) {
            findings.push_back(DoesNotDecode(entry));
        }
        return text;
    };
    return ChangeProtected(document, Severity::kWarning, reveal);
}

Findings Rekey(StringsDocument& document, const ProtectionKeys& from, const ProtectionKeys& to) {
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

Findings ListSections(const StringsDocument& document, std::ostream& out) {
    const std::vector<StringsDocument::Section> sections = document.Sections();
    if (sections.empty()) {
        return {NoSection()};
    }
    out << "  LINE  ENTRIES  PROTECTED  SECTION\n";
    for (const StringsDocument::Section& section : sections) {
        const std::set<std::string> keys = KeysOf(section);
        const auto protectedKeys =
            std::count_if(keys.begin(), keys.end(),
                          [](const std::string& key) { return IsProtectedKey(key.c_str()); });
        out << std::setw(6) << section.line + 1 << std::setw(9) << keys.size() << std::setw(11)
            << protectedKeys << "  " << Printable(section.name) << '\n';
    }
    return {};
}

Findings Show(const StringsDocument& document, const ShowRequest& request, std::ostream& out) {
    const std::vector<StringsDocument::Section> sections = document.Sections();
    if (sections.empty()) {
        return {NoSection()};
    }
    const auto named = std::find_if(sections.begin(), sections.end(), [&](const auto& section) {
        return KorString::SearchLanguageKey(KorString::LANG_STATEMENT + section.name,
                                            request.language.c_str());
    });
    Findings findings;
    if (named == sections.end()) {
        const std::string what = "there is no section " + request.language;
        if (!request.hasFallback) {
            return {{Severity::kError, std::nullopt, what}};
        }
        findings.push_back({Severity::kNote, std::nullopt, what + ", so this is the first"});
    }
    const StringsDocument::Section& section = named == sections.end() ? sections.front() : *named;
    // The copy can be read only once, so a second pass for the first section must not be needed.
    LoadByCopy(document.Bytes(), named == sections.end() ? "" : request.language);
    CheckLoaded(section);
    std::vector<std::string> wanted = request.keys;
    if (wanted.empty()) {
        for (const auto& entry : KorString::gMapLocalizedStrings) {
            wanted.emplace_back(entry.key);
        }
    }
    const std::map<std::string, std::size_t> lines = LinesOf(section);
    const ProtectionKeys protectionKeys = MasterKey::BuiltIn().Derive();
    for (const std::string& key : wanted) {
        const bool canBeAsked = key.find('\0') == std::string::npos;
        const char* const text = canBeAsked ? AnswerFor(key, protectionKeys) : nullptr;
        if (text != nullptr) {
            const bool isHidden = IsProtectedKey(key.c_str()) && !request.isRevealed;
            out << Printable(key) << '=' << (isHidden ? "(protected)" : '"' + Printable(text) + '"')
                << '\n';
        } else {
            const auto line = lines.find(key);
            findings.push_back({Severity::kError,
                                line == lines.end() ? std::nullopt : std::optional(line->second),
                                key + ": " + WhyNull(key)});
        }
    }
    return findings;
}
