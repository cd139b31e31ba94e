#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "tools/orva-strings/checks/Translations.h"
#include "tools/orva-strings/cli/Command.h"
#include "tools/orva-strings/cli/Count.h"
#include "tools/orva-strings/cli/UsageError.h"
#include "tools/orva-strings/commands/CommonArguments.h"
#include "tools/orva-strings/commands/OwnOutput.h"
#include "tools/orva-strings/document/FindSection.h"
#include "tools/orva-strings/document/SectionNames.h"
#include "tools/orva-strings/exchange/LanguageCodes.h"
#include "tools/orva-strings/exchange/XliffWriter.h"
#include "tools/orva-strings/system/Files.h"

namespace fs = std::filesystem;

namespace {

constexpr Argument kTarget = {
    "--language", "TARGET", "A section to export; may be given several times",
    Role::kText,  false,    "--all"};

constexpr Argument kXliff = {
    "-o,--output", "XLIFF",
    "The file to write, or the folder for a file of each language; - is standard output",
    Role::kOutput, true};

// The sections that a load can reach, each a reader at its header.
std::vector<StringsReader> ReachableSections(std::string_view bytes, Findings& findings) {
    std::vector<StringsReader> sections;
    SectionNames names;
    StringsReader lines(bytes);
    while (lines.Next()) {
        if (!lines.IsHeader()) {
            continue;
        }
        if (names.Add(lines.SectionName())) {
            sections.push_back(lines);
        } else {
            findings.push_back({Severity::kWarning, lines.Line().number,
                                "no load can reach this section, so it is not exported"});
        }
    }
    return sections;
}

// The code of the section at whose header a reader is. Without one, adds an error.
std::string CodeOf(const StringsReader& section, const LanguageCodes& codes, Findings& findings) {
    const std::string name(section.SectionName());
    const std::optional<std::string> code = codes.CodeOf(name);
    if (!code) {
        std::string text =
            "the section " + name + " has no language code; '# orva: language CODE' ";
        text += "below this line would say it, or --code " + name + "=CODE";
        findings.push_back({Severity::kError, section.Line().number, text});
    }
    return code.value_or("");
}

std::string Summary(const XliffWriter& writer, const XliffTargets& targets) {
    std::string summary = "wrote " + Count(targets.units, "entry", "entries");
    if (targets.missing > 0) {
        summary += ", " + std::to_string(targets.missing) + " without a translation";
    }
    if (targets.stale > 0) {
        summary += ", " + std::to_string(targets.stale) + " to review";
    }
    if (writer.ProtectedCount() > 0) {
        summary += ", left out " + std::to_string(writer.ProtectedCount()) + " protected";
    }
    return summary;
}

// Also as other programs have written it.
bool IsXliff(std::string_view content) {
    return content.substr(0, 1000).find("<xliff") != std::string_view::npos;
}

// Writes the entries of sections, with their translations, for translators' programs.
class Export : public Command {
public:
    Export()
        : Command({"export",
                   "Write XLIFF 1.2 files for translators",
                   {"export --all --code English=en --code Deutsch=de -o xliff Source.strings"}}) {}

    void Declare(Arguments& arguments) override {
        arguments.Add(kStringsFile, m_file);
        arguments.AddFlag("--all", "Export every section but the reference", m_isAll);
        arguments.Add(kTarget, m_languages);
        arguments.Add(kLanguageCode, m_codes);
        arguments.Add(kReference, m_reference);
        arguments.Add(kBase, m_base);
        arguments.AddFlag(kRevealFlag, kRevealHelp, m_isRevealed);
        arguments.Add(kKeyFile, m_keyFile);
        arguments.Add(kXliff, m_output);
    }

    ExitStatus Run(const Console& console) override {
        if (!m_isAll && m_languages.empty()) {
            throw UsageError("--language or --all must say what to export");
        }
        const std::optional<std::string> original = AsXml(fs::path(m_file).filename().string());
        if (!original) {
            throw UsageError(m_file + ": XML can't hold this name");
        }
        const ProtectionKeys keys = console.ReadKey(m_keyFile).Derive();
        const FileSnapshot file = console.Read(m_file);
        Findings findings;
        const auto reference = FindSection(file.bytes, m_reference, false, findings);
        for (const std::string& code : m_codes) {
            if (const std::size_t equals = code.rfind('='); equals != std::string::npos) {
                FindNamed(file.bytes, code.substr(0, equals), findings);
            }
        }
        if (HasError(findings)) {
            return console.Report(findings, m_file);
        }
        const LanguageCodes codes(m_codes, StringsReader(file.bytes), findings);
        const std::string source = CodeOf(*reference, codes, findings);
        const std::vector<Target> targets = FindTargets(file.bytes, *reference, codes, findings);
        const std::vector<KeySet> stale = FindStale(file.bytes, targets, keys, findings);
        if (HasError(findings)) {
            return console.Report(findings, m_file);
        }
        const XliffWriter writer(*reference, file.bytes, m_isRevealed ? &keys : nullptr, findings);
        const std::vector<std::string> outputs = OutputsFor(targets);
        for (std::size_t i = 0; i < targets.size(); ++i) {
            const XliffTargets texts = writer.ReadTargets(targets[i].section, stale[i], findings);
            WriteOutput(outputs[i], Summary(writer, texts), console, [&](const TakePiece& take) {
                writer.Write(*original, source, targets[i].code, texts, take);
            });
        }
        return console.Report(findings, m_file);
    }

private:
    // A section to export.
    struct Target {
        StringsReader section;  // at its header
        std::string code;
    };

    std::vector<Target> FindTargets(std::string_view bytes, const StringsReader& reference,
                                    const LanguageCodes& codes, Findings& findings) const {
        std::vector<Target> targets;
        for (const StringsReader& section :
             m_isAll ? ReachableSections(bytes, findings) : NamedSections(bytes, findings)) {
            if (section.Line().number != reference.Line().number) {
                targets.push_back({section, CodeOf(section, codes, findings)});
            } else if (!m_isAll) {
                findings.push_back(
                    {Severity::kError, section.Line().number,
                     "this section is the reference, which has no translations of its own"});
            }
        }
        if (m_isAll && targets.empty()) {
            findings.push_back(
                {Severity::kError, std::nullopt, "the file has no section but the reference"});
        }
        return targets;
    }

    // For each target, the keys whose translation is of an earlier text of the reference.
    std::vector<KeySet> FindStale(std::string_view bytes, const std::vector<Target>& targets,
                                  const ProtectionKeys& keys, Findings& findings) const {
        std::vector<KeySet> stale(targets.size());
        if (m_base.empty()) {
            return stale;
        }
        const std::string base = ReadFile(m_base);
        if (const auto all = ReadTranslations(bytes, m_reference, base, keys, findings)) {
            std::transform(
                targets.begin(), targets.end(), stale.begin(),
                [&](const Target& target) { return all->StaleKeys(target.section.Line().number); });
        }
        return stale;
    }

    // The section of this name. Adds an error if it is missing.
    static std::optional<StringsReader> FindNamed(std::string_view bytes, const std::string& name,
                                                  Findings& findings) {
        Findings missing;
        auto section = FindSection(bytes, name, false, missing);
        findings.insert(findings.end(), missing.begin(), missing.end());
        return section;
    }

    // Those that --language names, each once.
    std::vector<StringsReader> NamedSections(std::string_view bytes, Findings& findings) const {
        std::vector<StringsReader> sections;
        for (const std::string& language : m_languages) {
            const auto section = FindNamed(bytes, language, findings);
            const auto isSame = [&](const StringsReader& other) {
                return other.Line().number == section->Line().number;
            };
            if (section && std::none_of(sections.begin(), sections.end(), isSame)) {
                sections.push_back(*section);
            }
        }
        return sections;
    }

    // The file for each section. Creates the folder that they are for.
    std::vector<std::string> OutputsFor(const std::vector<Target>& targets) const {
        const fs::file_status old = StatusOf(m_output);
        const bool hasFolder = fs::is_directory(old);
        const bool isFolder = m_isAll || targets.size() > 1 || hasFolder;
        if (isFolder && (m_output == "-" || (fs::exists(old) && !hasFolder))) {
            throw UsageError("-o: --all and several languages need a folder");
        }
        std::vector<std::string> outputs;
        for (const Target& target : targets) {
            const fs::path file = fs::path(m_output) / (target.code + ".xlf");
            outputs.push_back(isFolder ? file.string() : m_output);
            for (const std::string& input : {m_file, m_keyFile, m_base}) {
                if (AreSameFile(outputs.back(), input)) {
                    throw UsageError(outputs.back() + ": the output would overwrite this file");
                }
            }
            if (outputs.back() != "-") {
                ReadOwnOutput(outputs.back(), "export", IsXliff);
            }
        }
        std::error_code error;
        if (isFolder && !fs::create_directory(m_output, error) && error) {
            throw std::system_error(error, m_output);
        }
        return outputs;
    }

    static void WriteOutput(const std::string& output, const std::string& summary,
                            const Console& console, const BytesInPieces& write) {
        if (output == "-") {
            write([&](std::string_view piece) { console.Out() << piece; });
        } else {
            console.SayDone(output, summary, [&] { WriteFile(output, write); });
        }
    }

    std::string m_file;
    std::vector<std::string> m_languages;
    std::vector<std::string> m_codes;
    std::string m_reference;
    std::string m_base;
    std::string m_keyFile;
    std::string m_output;
    bool m_isAll = false;
    bool m_isRevealed = false;
};

}  // namespace

std::unique_ptr<Command> MakeExport() {
    return std::make_unique<Export>();
}
