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

#include "tools/orva-strings/Files.h"
#include "tools/orva-strings/Key.h"
#include "tools/orva-strings/Printable.h"
#include "tools/orva-strings/ProtectedText.h"
#include "tools/orva-strings/SignalsHeld.h"
#include "tools/orva-strings/TemporaryBundle.h"

namespace {

using Entry = StringsDocument::Entry;

constexpr char kHeaderKey[] = "QVLANG";
constexpr char kNoSection[] = "there is no section in it";

// Asks for each protected entry's new value, which may be none, and sets it.
template <typename NewValue>
Findings ChangeProtected(StringsDocument& document, const NewValue& newValue) {
    Findings findings;
    for (const Entry& entry : document.Misplaced()) {
        findings.push_back({entry.line, entry.key +
                                            ": it stands before the first section, or behind a "
                                            "byte-order mark or carriage return, and is never "
                                            "read"});
    }
    const std::vector<StringsDocument::Section> sections = document.Sections();
    if (sections.empty()) {
        findings.push_back({0, kNoSection});
    }
    for (const StringsDocument::Section& section : sections) {
        for (const Entry& entry : section.entries) {
            if (!IsProtectedKey(entry.key.c_str())) {
                continue;
            }
            const std::optional<std::string> value = newValue(entry, findings);
            if (value && !document.SetValue(entry.line, *value)) {
                findings.push_back({entry.line, entry.key +
                                                    ": the text can't be written as a quoted value "
                                                    "that reads back the same"});
            }
        }
    }
    return findings;
}

Finding DoesNotDecode(const Entry& entry) {
    return {entry.line, entry.key +
                            ": the value looks stored but does not decode: it was damaged or made "
                            "with another key"};
}

// ":LINE" of the first entry of each key.
std::map<std::string, std::string> LinesOf(const StringsDocument::Section& section) {
    std::map<std::string, std::string> lines;
    for (const Entry& entry : section.entries) {
        lines.emplace(entry.key, ':' + std::to_string(entry.line + 1));
    }
    return lines;
}

// What a host gets for a key. Throws if that is not what is stored: a look-up that runs out of
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
    const SignalsHeld held;
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
    const StringMap& table = KorString::gMapLocalizedStrings;
    const StringMap::Entry* const header = table.Find(kHeaderKey);
    if (header == nullptr || header->Value() != name || table.Size() != KeysOf(section).size()) {
        throw std::runtime_error("the section could not be loaded whole");
    }
}

}  // namespace

Findings Protect(StringsDocument& document, const ProtectionKeys& keys, bool isForced) {
    return ChangeProtected(
        document, [&](const Entry& entry, Findings& findings) -> std::optional<std::string> {
            if (DecodeProtectedText(keys, entry.value)) {
                return std::nullopt;
            }
            if (!isForced && LooksStored(entry.value)) {
                findings.push_back(DoesNotDecode(entry));
                return std::nullopt;
            }
            if (entry.value.find('\0') != std::string::npos) {
                findings.push_back({entry.line, entry.key + ": the text has a NUL byte in it"});
                return std::nullopt;
            }
            return EncodeProtectedText(keys, entry.value);
        });
}

Findings Reveal(StringsDocument& document, const ProtectionKeys& keys) {
    return ChangeProtected(document, [&](const Entry& entry, Findings& findings) {
        std::optional<std::string> text = DecodeProtectedText(keys, entry.value);
        if (!text && LooksStored(entry.value)) {
            findings.push_back(DoesNotDecode(entry));
        }
        return text;
    });
}

Findings Rekey(StringsDocument& document, const ProtectionKeys& from, const ProtectionKeys& to) {
    return ChangeProtected(document, [&](const Entry& entry, Findings& findings) {
        std::optional<std::string> value = DecodeProtectedText(from, entry.value);
        if (value) {
            value = EncodeProtectedText(to, *value);
        } else if (LooksStored(entry.value) && !DecodeProtectedText(to, entry.value)) {
            findings.push_back(DoesNotDecode(entry));
        }
        return value;
    });
}

void ListSections(const StringsDocument& document, std::ostream& out) {
    out << "  LINE  ENTRIES  PROTECTED  SECTION\n";
    for (const StringsDocument::Section& section : document.Sections()) {
        const std::set<std::string> keys = KeysOf(section);
        const auto protectedKeys =
            std::count_if(keys.begin(), keys.end(),
                          [](const std::string& key) { return IsProtectedKey(key.c_str()); });
        out << std::setw(6) << section.line + 1 << std::setw(9) << keys.size() << std::setw(11)
            << protectedKeys << "  " << Printable{section.name} << '\n';
    }
}

bool Show(const StringsDocument& document, const std::string& language,
          const std::vector<std::string>& keys, bool isRevealed, const std::string& fileName,
          std::ostream& out, std::ostream& err) {
    const std::vector<StringsDocument::Section> sections = document.Sections();
    if (sections.empty()) {
        err << Printable{fileName} << ": error: " << kNoSection << '\n';
        return false;
    }
    const auto loaded = std::find_if(sections.begin(), sections.end(), [&](const auto& section) {
        return KorString::SearchLanguageKey(KorString::LANG_STATEMENT + section.name,
                                            language.c_str());
    });
    LoadByCopy(document.Bytes(), loaded == sections.end() ? "" : language);
    const StringsDocument::Section& section = loaded == sections.end() ? sections.front() : *loaded;
    CheckLoaded(section);
    if (loaded == sections.end()) {
        err << Printable{fileName} << ": note: there is no section " << Printable{language}
            << ", so this is the first\n";
    }
    std::vector<std::string> wanted = keys;
    if (wanted.empty()) {
        for (const StringMap::Entry* entry : KorString::gMapLocalizedStrings.Ordered()) {
            wanted.emplace_back(entry->Key());
        }
    }
    const std::map<std::string, std::string> lines = LinesOf(section);
    const ProtectionKeys protectionKeys = Key::BuiltIn().Derive();
    bool isComplete = true;
    for (const std::string& key : wanted) {
        const bool canBeAsked = key.find('\0') == std::string::npos;
        const char* const text = canBeAsked ? AnswerFor(key, protectionKeys) : nullptr;
        if (text != nullptr) {
            const bool isHidden = IsProtectedKey(key.c_str()) && !isRevealed;
            out << Printable{key} << '='
                << Printable{isHidden ? "(protected)" : '"' + Escaped(text) + '"'} << '\n';
        } else {
            const auto line = lines.find(key);
            err << Printable{fileName} << (line == lines.end() ? "" : line->second)
                << ": error: " << Printable{key} << ": " << WhyNull(key) << '\n';
            isComplete = false;
        }
    }
    return isComplete;
}
