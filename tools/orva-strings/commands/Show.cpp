#include <algorithm>
#include <cstring>
#include <map>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>

#include "strings/Line.h"
#include "support/TemporaryBundle.h"
#include "tools/orva-strings/cli/Command.h"
#include "tools/orva-strings/cli/Printable.h"
#include "tools/orva-strings/commands/CommonArguments.h"
#include "tools/orva-strings/document/NoSection.h"
#include "tools/orva-strings/document/StringsReader.h"
#include "tools/orva-strings/protection/ProtectedText.h"
#include "tools/orva-strings/system/Files.h"
#include "tools/orva-strings/system/SignalBlock.h"

namespace {

// What a host gets for a key. Throws if that is not what is stored: a lookup that runs out of
// memory does not say so, and answers null or an empty text.
const char* AnswerFor(const char* key, const ProtectionKeys& keys) {
    const char* const text = ZuGetLocalizedString(key);
    const char* const stored = KorGetLocalizedString(key);
    if (stored != nullptr && IsProtectedKey(key)) {
        const std::optional<std::string> decoded = DecodeProtectedText(keys, stored);
        if (text == nullptr ? decoded.has_value()
                            : !decoded || std::strcmp(text, decoded->c_str()) != 0) {
            throw std::runtime_error(std::string(key) + ": the library could not decode the value");
        }
    }
    return text;
}

bool HasNul(std::string_view key) {
    return key.find('\0') != std::string_view::npos;
}

// Why the library answers null for a key.
const char* WhyNull(std::string_view key) {
    if (HasNul(key)) {
        return "the key contains a NUL byte, so ZuGetLocalizedString can't look it up";
    }
    const char* const stored = KorGetLocalizedString(key.data());
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

// Throws unless the library's table holds the whole section at whose header the reader is: a load
// that runs out of memory or fails to read treats that as the end of the file.
void CheckLoaded(StringsReader section) {
    const KorStringMap& table = KorString::gMapLocalizedStrings;
    std::string buffer;
    const auto header = table.Find("QVLANG");
    bool isWhole = header && header->value == ReadEntry(section.Line().text, buffer)->value;
    while (isWhole && section.Next() && !section.IsHeader()) {
        const auto entry = section.Entry();
        isWhole = !entry || table.Find(entry->key);
    }
    if (!isWhole) {
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
        const FileSnapshot file = console.Read(m_file);
        Findings findings;
        if (const auto section = Select(StringsReader(file.bytes), findings)) {
            // The copy can be read only once, so the library must not need a second pass to find
            // the first section.
            const bool isFallback = !findings.empty();
            LoadByCopy(file.bytes, isFallback ? "" : m_language);
            CheckLoaded(*section);
            ShowTexts(*section, console.Out(), findings);
        }
        return console.Report(findings, m_file);
    }

private:
    // A reader at the header of the section to show, if there is one. Adds any finding about the
    // choice.
    std::optional<StringsReader> Select(StringsReader lines, Findings& findings) const {
        std::optional<StringsReader> first;
        while (lines.Next()) {
            if (lines.IsHeader()) {
                if (::IsHeader(lines.Line().text, KorString::LANG_STATEMENT, m_language.c_str())) {
                    return lines;
                }
                first = first ? first : lines;
            }
        }
        if (!first) {
            findings.push_back(NoSection());
            return std::nullopt;
        }
        const std::string what = "there is no section " + m_language;
        if (!m_hasFallback) {
            findings.push_back({Severity::kError, std::nullopt, what});
            return std::nullopt;
        }
        findings.push_back(
            {Severity::kNote, std::nullopt, what + ", so this is the first section"});
        return first;
    }

    // Writes the answer for each key; a key without one is a finding.
    void ShowTexts(StringsReader section, std::ostream& out, Findings& findings) const {
        const ProtectionKeys protectionKeys = MasterKey::BuiltIn().Derive();
        std::vector<std::string_view> unanswered;
        const auto show = [&](std::string_view key) {  // a NUL byte follows it
            const char* const text = HasNul(key) ? nullptr : AnswerFor(key.data(), protectionKeys);
            if (text == nullptr) {
                unanswered.push_back(key);
                return;
            }
            const bool isHidden = IsProtectedKey(key.data()) && !m_isRevealed;
            out << Printable(key) << '=' << (isHidden ? "(protected)" : '"' + Printable(text) + '"')
                << '\n';
        };
        if (m_keys.empty()) {
            for (const auto& entry : KorString::gMapLocalizedStrings) {
                show(entry.key);
            }
        } else {
            std::for_each(m_keys.begin(), m_keys.end(), show);
        }
        AddUnanswered(unanswered, std::move(section), findings);
    }

    // Adds a finding for each key without an answer, about the line of its first entry, if any.
    static void AddUnanswered(const std::vector<std::string_view>& keys, StringsReader section,
                              Findings& findings) {
        std::map<std::string_view, std::optional<std::size_t>> lines;
        for (const std::string_view key : keys) {
            lines[key];
        }
        while (section.Next() && !section.IsHeader()) {
            if (const auto entry = section.Entry()) {
                const auto found = lines.find(entry->key);
                if (found != lines.end() && !found->second) {
                    found->second = section.Line().number;
                }
            }
        }
        for (const std::string_view key : keys) {
            findings.push_back(
                {Severity::kError, lines[key], std::string(key) + ": " + WhyNull(key)});
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
