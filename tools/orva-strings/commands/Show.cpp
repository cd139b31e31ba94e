#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <OrvaLanguage/KorString.h>

#include "protection/ProtectedForm.h"
#include "tools/orva-strings/cli/Command.h"
#include "tools/orva-strings/commands/AnswerWriter.h"
#include "tools/orva-strings/commands/CommonArguments.h"
#include "tools/orva-strings/document/FindSection.h"
#include "tools/orva-strings/document/LoadedSection.h"
#include "tools/orva-strings/document/LostHeader.h"
#include "tools/orva-strings/document/NoSection.h"
#include "tools/orva-strings/document/SectionNames.h"
#include "tools/orva-strings/document/StringsReader.h"
#include "tools/orva-strings/document/Unanswered.h"

namespace {

// Loads sections through the library and shows what it answers.
class Show : public Command {
public:
    Show()
        : Command({"show",
                   "Show what the library answers",
                   {"show --language Deutsch --reveal Sample.strings IDE_TITLE",
                    "show --all-languages Sample.strings MENU_OPEN"}}) {}

    void Declare(Arguments& arguments) override {
        arguments.Add(kStringsFile, m_file);
        arguments.Add({"KEY", "", "Keys to look up; without them, the whole section"}, m_keys);
        arguments.AddFlag("--all-languages",
                          "Show every section, each as a host gets it that loads no other",
                          m_hasAllLanguages);
        arguments.Add(
            {"--language", "LANGUAGE", "The section's name; without it, the first section",
             Role::kText, false, "--all-languages"},
            m_language);
        arguments.AddFlag(
            "--fallback",
            "If no section has that name, show the first one, as the library would load it",
            m_hasFallback);
        arguments.AddFlag(kRevealFlag, kRevealHelp, m_isRevealed);
        arguments.Add(kKeyFile, m_keyFile);
        arguments.Add(kTextOrJson, m_format);
        arguments.Add(kStdinName, m_stdinName);
    }

    ExitStatus Run(const Console& console) override {
        const FileSnapshot file = console.Read(m_file);
        const std::string& name = NameOf(m_file, m_stdinName);
        const ProtectionKeys keys = console.ReadKey(m_keyFile).Derive();
        const auto writer = m_format == "json"
                                ? MakeJsonAnswerWriter(console.Out(), name)
                                : MakeTextAnswerWriter(console.Out(), m_hasAllLanguages);
        Findings findings;
        if (m_hasAllLanguages) {
            ShowAll(file.bytes, keys, *writer, findings);
        } else if (const auto section =
                       FindSection(file.bytes, m_language, m_hasFallback, findings)) {
            // The copy can be read only once, so the library must not need a second pass to find
            // the first section.
            const bool isFallback = !findings.empty();
            LoadSection(file.bytes, isFallback ? "" : m_language, *section);
            ShowAnswers(*section, keys, *writer, findings);
        }
        writer->End();
        return console.Report(findings, name);
    }

private:
    // Shows each section that a load can reach.
    void ShowAll(std::string_view bytes, const ProtectionKeys& keys, AnswerWriter& writer,
                 Findings& findings) const {
        SectionNames names;
        Findings lost;
        StringsReader lines(bytes);
        while (lines.Next()) {
            if (!lines.IsHeader()) {
                FindLostHeaders(lines, lost);
            } else if (names.Add(lines.SectionName())) {
                // From its own lines alone: in the whole file, the library would pass over all
                // sections before it.
                LoadSection(BytesOf(lines, bytes), "", lines);
                ShowAnswers(lines, keys, writer, findings);
            } else {
                findings.push_back({Severity::kWarning, lines.Line().number,
                                    "no load can reach this section, so it is not shown"});
            }
        }
        if (!lines.IsInSection()) {
            findings.push_back(NoSection());
        }
        lost = AsWarnings(std::move(lost));
        findings.insert(findings.end(), lost.begin(), lost.end());
    }

    // The bytes of a section, with a reader at its header.
    static std::string_view BytesOf(StringsReader section, std::string_view bytes) {
        const char* const begin = section.Line().text.data();
        while (section.Next() && !section.IsHeader()) {
        }
        const char* const end =
            section.IsHeader() ? section.Line().text.data() : bytes.data() + bytes.size();
        return bytes.substr(static_cast<std::size_t>(begin - bytes.data()),
                            static_cast<std::size_t>(end - begin));
    }

    // Writes the answer of the section loaded for each key; a key without one is a finding.
    void ShowAnswers(const StringsReader& section, const ProtectionKeys& keys, AnswerWriter& writer,
                     Findings& findings) const {
        std::vector<std::string_view> unanswered;
        const auto show = [&](std::string_view key) {  // a NUL byte follows it
            const bool isProtected = IsProtectedKey(key.data());
            const Answer answer = {key, AnswerFor(key, keys, m_keyFile.empty()), isProtected,
                                   isProtected && !m_isRevealed};
            if (!answer.text) {
                unanswered.push_back(key);
            }
            writer.Add(answer);
        };
        writer.BeginSection(section.SectionName(), section.Line().number);
        if (m_keys.empty()) {
            for (const auto& entry : KorString::gMapLocalizedStrings) {
                show(entry.key);
            }
        } else {
            std::for_each(m_keys.begin(), m_keys.end(), show);
        }
        ExplainUnanswered(unanswered, section, m_hasAllLanguages, findings);
    }

    std::string m_file;
    std::vector<std::string> m_keys;
    std::string m_language;
    std::string m_keyFile;
    std::string m_format = "text";
    std::string m_stdinName;
    bool m_hasAllLanguages = false;
    bool m_hasFallback = false;
    bool m_isRevealed = false;
};

}  // namespace

std::unique_ptr<Command> MakeShow() {
    return std::make_unique<Show>();
}
