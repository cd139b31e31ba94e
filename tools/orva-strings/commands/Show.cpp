#include <algorithm>
#include <cstring>
#include <map>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>

#include "support/TemporaryBundle.h"
#include "tools/orva-strings/cli/Command.h"
#include "tools/orva-strings/cli/Printable.h"
#include "tools/orva-strings/commands/CommonArguments.h"
#include "tools/orva-strings/document/NoSection.h"
#include "tools/orva-strings/document/StringsDocument.h"
#include "tools/orva-strings/protection/ProtectedText.h"
#include "tools/orva-strings/system/Files.h"
#include "tools/orva-strings/system/SignalBlock.h"

namespace {

using Section = StringsDocument::Section;

// The line of each key's first entry.
std::map<std::string, std::size_t> LinesOf(const Section& section) {
    std::map<std::string, std::size_t> lines;
    for (const StringsDocument::Entry& entry : section.entries) {
        lines.emplace(entry.key, entry.line);
    }
    return lines;
}

// What a host gets for a key. Throws if that is not what is stored: a lookup that runs out of
// memory does not say so, and answers null or an empty text.
const char* AnswerFor(const std::string& key, const ProtectionKeys& keys) {
    const char* const text = ZuGetLocalizedString(key.c_str());
    const char* const stored = KorGetLocalizedString(key.c_str());
    if (stored != nullptr && IsProtectedKey(key.c_str())) {
        const std::optional<std::string> decoded = DecodeProtectedText(keys, stored);
        if (text == nullptr ? decoded.has_value()
                            : !decoded || std::strcmp(text, decoded->c_str()) != 0) {
            throw std::runtime_error(key + ": the library could not decode the value");
        }
    }
    return text;
}

// Why the library answers null for a key.
const char* WhyNull(const std::string& key) {
    if (key.find('\0') != std::string::npos) {
        return "the key contains a NUL byte, so ZuGetLocalizedString can't look it up";
    }
    const char* const stored = KorGetLocalizedString(key.c_str());
    if (stored == nullptr) {
        return "there is no such key in the section";
    }
    return LooksStored(stored)
               ? "the value does not decode: it was damaged or made with another key"
               : "the value is not protected, so the library answers null";
}

// Loads a section of these bytes through the library, from a nameless copy. The section must exist:
// for a missing one, the library would read the copy twice.
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

// Throws unless the library's table holds the whole section: a load that runs out of memory or
// fails to read treats that as the end of the file.
void CheckLoaded(const Section& section) {
    std::string key;
    std::string name;
    KorString::GetLocalizedElement(KorString::LANG_STATEMENT + section.name, &key, &name);
    const KorStringMap& table = KorString::gMapLocalizedStrings;
    const auto header = table.Find("QVLANG");
    if (!header || header->value != name || table.Size() != section.Keys().size()) {
        throw std::runtime_error("the library could not load the whole section");
    }
}

// Loads a section through the library and shows what it answers.
class Show : public Command {
public:
    Show()
        : Command({"show",
                   "Show what the library answers",
                   {"show --language Deutsch --reveal Sample.strings IDE_TITLE"}}) {}

    void Declare(Arguments& arguments) override {
        arguments.Add(kStringsFile, m_file);
        arguments.Add({"KEY", "", "Keys to look up; without them, the whole section"}, m_keys);
        arguments.Add(
            {"--language", "LANGUAGE", "The section's name; without it, the first section"},
            m_language);
        arguments.AddFlag(
            "--fallback",
            "If no section has that name, show the first one, as the library would load it",
            m_hasFallback);
        arguments.AddFlag("--reveal", "Show protected texts too", m_isRevealed);
    }

    ExitStatus Run(const Console& console) override {
        const StringsDocument document(console.Read(m_file).bytes);
        const std::vector<Section> sections = document.Sections();
        Findings findings;
        if (const Section* const section = Select(sections, findings)) {
            // The copy can be read only once, so the library must not need a second pass to find
            // the first section.
            const bool isFallback = !findings.empty();
            LoadByCopy(document.Bytes(), isFallback ? "" : m_language);
            CheckLoaded(*section);
            ShowTexts(*section, console.Out(), findings);
        }
        return console.Report(findings, m_file);
    }

private:
    // The section to show, or null. Adds any finding about the choice.
    const Section* Select(const std::vector<Section>& sections, Findings& findings) const {
        if (sections.empty()) {
            findings.push_back(NoSection());
            return nullptr;
        }
        const auto named =
            std::find_if(sections.begin(), sections.end(), [&](const Section& section) {
                return KorString::SearchLanguageKey(KorString::LANG_STATEMENT + section.name,
                                                    m_language.c_str());
            });
        if (named != sections.end()) {
            return &*named;
        }
        const std::string what = "there is no section " + m_language;
        if (!m_hasFallback) {
            findings.push_back({Severity::kError, std::nullopt, what});
            return nullptr;
        }
        findings.push_back(
            {Severity::kNote, std::nullopt, what + ", so this is the first section"});
        return &sections.front();
    }

    // Writes the answer for each key; a key without one is a finding.
    void ShowTexts(const Section& section, std::ostream& out, Findings& findings) const {
        std::vector<std::string> keys = m_keys;
        if (keys.empty()) {
            for (const auto& entry : KorString::gMapLocalizedStrings) {
                keys.emplace_back(entry.key);
            }
        }
        const std::map<std::string, std::size_t> lines = LinesOf(section);
        const ProtectionKeys protectionKeys = MasterKey::BuiltIn().Derive();
        for (const std::string& key : keys) {
            const bool canBeAsked = key.find('\0') == std::string::npos;
            const char* const text = canBeAsked ? AnswerFor(key, protectionKeys) : nullptr;
            if (text != nullptr) {
                const bool isHidden = IsProtectedKey(key.c_str()) && !m_isRevealed;
                out << Printable(key) << '='
                    << (isHidden ? "(protected)" : '"' + Printable(text) + '"') << '\n';
            } else {
                const auto line = lines.find(key);
                findings.push_back(
                    {Severity::kError,
                     line == lines.end() ? std::nullopt : std::optional(line->second),
                     key + ": " + WhyNull(key)});
            }
        }
    }

    std::string m_file;
    std::vector<std::string> m_keys;
    std::string m_language;
    bool m_hasFallback = false;
    bool m_isRevealed = false;
};

}  // namespace

std::unique_ptr<Command> MakeShow() {
    return std::make_unique<Show>();
}
