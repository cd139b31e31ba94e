#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/orva-strings/cli/Color.h"
#include "tools/orva-strings/cli/Command.h"
#include "tools/orva-strings/cli/Progress.h"
#include "tools/orva-strings/cli/UsageError.h"
#include "tools/orva-strings/commands/CommonArguments.h"
#include "tools/orva-strings/commands/ReportArguments.h"
#include "tools/orva-strings/document/FindSection.h"
#include "tools/orva-strings/hosts/HostKeys.h"
#include "tools/orva-strings/hosts/KeyUsage.h"
#include "tools/orva-strings/hosts/SourceFiles.h"
#include "tools/orva-strings/system/Files.h"

namespace {

// Compares the keys of a strings file with those that a host's sources mention.
class Usage : public Command {
public:
    Usage()
        : Command({"usage",
                   "Find keys that a host's sources misspell, and keys that they do not mention",
                   {"usage --source src --keep 'ERROR_*' Source.strings"}}) {}

    void Declare(Arguments& arguments) override {
        arguments.Add(kStringsFile, m_file);
        arguments.Add(
            {"--source", "DIR",
             "A folder of sources in C, C++, Objective-C or Swift, or a single one; may be "
             "given several times",
             Role::kFile, true},
            m_folders);
        arguments.Add(
            {"--call", "FUNCTION",
             "A function whose first argument is a key, besides those of the library; may "
             "be given several times"},
            m_options.calls);
        arguments.Add({"--keep", "PATTERN",
                       "Keys that are used elsewhere, with * and ? as in a shell; may be given "
                       "several times"},
                      m_options.kept);
        arguments.Add(kScope, m_options.scope);
        arguments.Add(kReference, m_reference);
        arguments.Add(kReportFormat, m_format);
        arguments.Add(kFailOn, m_failOn);
        arguments.Add(kStdinName, m_stdinName);
    }

    ExitStatus Run(const Console& console) override {
        for (const std::string& call : m_options.calls) {
            if (!IsCallName(call)) {
                throw UsageError("--call: '" + call + "' can't be the name of a function");
            }
        }
        const FileSnapshot file = console.Read(m_file);
        const std::string& name = NameOf(m_file, m_stdinName);
        Findings findings;
        const auto section = FindSection(file.bytes, m_reference, false, findings);
        if (!section) {
            return console.Report(findings, name);
        }
        KeyUsage usage(ReadHostKeys(*section, file.bytes), m_options);
        const std::vector<std::string> skipped = ReadSources(usage, console);
        for (const std::string& reason : skipped) {
            console.Say(Severity::kWarning, reason);
        }
        const Report report = usage.Finish(name);
        WriteReport(report, m_format, UsesColor("auto", console.IsOutTerminal()), console.Out());
        return StatusOf(report, m_failOn);
    }

private:
    // Returns why others were not read.
    std::vector<std::string> ReadSources(KeyUsage& usage, const Console& console) const {
        Progress progress(console.ErrTerminal());
        std::vector<std::string> skipped;
        const std::vector<SourceFile> sources = FindSources(m_folders, skipped);
        for (std::size_t i = 0; i < sources.size(); ++i) {
            progress.Show("reading source " + std::to_string(i + 1) + " of " +
                          std::to_string(sources.size()));
            const std::string bytes = ReadFile(sources[i].path);
            if (IsUtf16(bytes)) {
                skipped.push_back(sources[i].path + ": not read, since it is UTF-16");
            } else {
                usage.Read(sources[i].path, bytes, sources[i].language);
            }
        }
        return skipped;
    }

    static bool IsUtf16(const std::string& bytes) {
        return bytes.compare(0, 2, "\xFF\xFE") == 0 || bytes.compare(0, 2, "\xFE\xFF") == 0;
    }

    std::string m_file;
    std::vector<std::string> m_folders;
    UsageOptions m_options;
    std::string m_reference;
    std::string m_format = "text";
    std::string m_failOn = "error";
    std::string m_stdinName;
};

}  // namespace

std::unique_ptr<Command> MakeUsage() {
    return std::make_unique<Usage>();
}
