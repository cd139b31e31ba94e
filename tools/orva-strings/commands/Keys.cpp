#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tools/orva-strings/cli/Command.h"
#include "tools/orva-strings/cli/Count.h"
#include "tools/orva-strings/cli/UsageError.h"
#include "tools/orva-strings/commands/CommonArguments.h"
#include "tools/orva-strings/commands/OwnOutput.h"
#include "tools/orva-strings/document/FindSection.h"
#include "tools/orva-strings/hosts/Constants.h"
#include "tools/orva-strings/system/Files.h"

namespace {

HostLanguage LanguageOfName(const std::string& name) {
    return name == "c"     ? HostLanguage::kC
           : name == "c++" ? HostLanguage::kCpp
                           : HostLanguage::kSwift;
}

// Writes constants for keys, so that a compiler finds those that are misspelt.
class Keys : public Command {
public:
    Keys()
        : Command({"keys",
                   "Write a constant for each key, so that a misspelt one does not compile",
                   {"keys --language c++ -o Keys.h Source.strings"}}) {}

    void Declare(Arguments& arguments) override {
        arguments.Add(kStringsFile, m_file);
        arguments.Add({"--language", "CODE", "The programming language: c, c++ or swift",
                       Role::kText, true, nullptr, "c|c++|swift"},
                      m_language);
        arguments.Add(kScope, m_scope);
        arguments.Add(kReference, m_reference);
        arguments.Add({"-o,--output", "OUTPUT", kOutputHelp, Role::kOutput}, m_output);
        arguments.AddFlag(kCheckFlag, kCheckHelp, m_isCheck);
        arguments.Add(kStdinName, m_stdinName);
    }

    ExitStatus Run(const Console& console) override {
        const bool isToFile = !m_output.empty() && m_output != "-";
        if (m_isCheck && !isToFile) {
            throw UsageError("--check needs the file that -o names");
        }
        const ConstantsStyle style = Style();
        const std::string& name = NameOf(m_file, m_stdinName);
        const FileSnapshot file = console.Read(m_file);
        Findings findings;
        std::vector<HostKey> keys;
        if (const auto section = FindSection(file.bytes, m_reference, false, findings)) {
            keys = ReadHostKeys(*section, file.bytes);
            findings = CheckConstants(keys, style);
        }
        const ExitStatus status = console.Report(findings, name);
        if (status != kDone) {
            return status;
        }
        const std::string text =
            ConstantsFile(keys, style, std::filesystem::path(name).filename().string());
        if (!isToFile) {
            console.Out() << text;
            return kDone;
        }
        return WriteOutput(text, Count(keys.size(), "constant", "constants"), console);
    }

private:
    ConstantsStyle Style() const {
        const HostLanguage language = LanguageOfName(m_language);
        ConstantsStyle style = {language, m_scope.empty() ? DefaultScope(language) : m_scope};
        if (!IsScope(style)) {
            throw UsageError("--scope: '" + m_scope + "' can't hold constants in this language");
        }
        return style;
    }

    // Leaves a file alone that is as it should be, so that a build compiles nothing again. Replaces no
    // file but one of constants, so that a slip costs nothing.
    ExitStatus WriteOutput(const std::string& text, const std::string& what,
                           const Console& console) const {
        if (ReadOwnOutput(m_output, "keys", IsConstantsFile) == text) {
            return kDone;
        }
        if (m_isCheck) {
            console.SayDone(m_output, "would write " + what, [] {});
            return kFindings;
        }
        console.SayDone(m_output, "wrote " + what,
                        [&] { WriteFile(m_output, [&](const TakePiece& take) { take(text); }); });
        return kDone;
    }

    std::string m_file;
    std::string m_language;
    std::string m_scope;
    std::string m_reference;
    std::string m_output;
    std::string m_stdinName;
    bool m_isCheck = false;
};

}  // namespace

std::unique_ptr<Command> MakeKeys() {
    return std::make_unique<Keys>();
}
