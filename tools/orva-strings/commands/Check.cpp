#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/orva-strings/checks/Baseline.h"
#include "tools/orva-strings/checks/CheckStrings.h"
#include "tools/orva-strings/cli/Color.h"
#include "tools/orva-strings/cli/Command.h"
#include "tools/orva-strings/cli/Progress.h"
#include "tools/orva-strings/cli/UsageError.h"
#include "tools/orva-strings/commands/CommonArguments.h"
#include "tools/orva-strings/commands/OwnOutput.h"
#include "tools/orva-strings/commands/ReportArguments.h"
#include "tools/orva-strings/commands/RuleArguments.h"
#include "tools/orva-strings/protection/MasterKey.h"
#include "tools/orva-strings/system/Files.h"

namespace {

class Check : public Command {
public:
    Check()
        : Command({"check",
                   "Find what hosts would not get as it was meant",
                   {"check Source.strings", "check --shipped --require Deutsch Shipped.strings"}}) {
    }

    void Declare(Arguments& arguments) override {
        arguments.Add(kStringsFiles, m_files);
        arguments.Add(kStdinName, m_stdinName);
        arguments.AddFlag("--shipped",
                          "Check a file that is to be shipped as it is: every protected entry is "
                          "stored and decodes, and its text is nowhere else",
                          m_isShipped);
        arguments.Add(kKeyFile, m_keyFile);
        arguments.AddFlag("--allow-development-key",
                          "With --shipped, accept texts stored with the development key",
                          m_allowsDevelopmentKey);
        arguments.Add(kBase, m_base);
        arguments.Add(kReference, m_reference);
        arguments.Add({"--require", "LANGUAGE",
                       "A section that must exist and have every key; may be given several times"},
                      m_required);
        arguments.Add({"--error", "RULE", "Make a rule's findings errors"}, m_errors);
        arguments.Add({"--warn", "RULE", "Make a rule's findings warnings"}, m_warnings);
        arguments.Add({"--disable", "RULE", "Do not check a rule"}, m_disabled);
        arguments.Add(
            {"--baseline", "KNOWN", "Do not report the findings in this file", Role::kFile},
            m_baseline);
        arguments.Add({"--write-baseline", "KNOWN",
                       "Write the findings to this file, for --baseline, instead of reporting them",
                       Role::kFile, false, "--baseline"},
                      m_newBaseline);
        arguments.Add(kReportFormat, m_format);
        arguments.Add(kFailOn, m_failOn);
        arguments.Add({"--color", "WHEN",
                       "Whether to colour text; auto, the default, colours it on a terminal",
                       Role::kText, false, nullptr, "auto|always|never"},
                      m_color);
    }

    ExitStatus Run(const Console& console) override {
        if (!m_base.empty() && m_files.size() != 1) {
            throw UsageError(kBaseNeedsOneFile);
        }
        const Report report = CheckFiles(console);
        const bool isWhole = report.size() == m_files.size();
        if (!m_newBaseline.empty()) {
            if (isWhole) {
                WriteBaseline(report, console.Out());
            }
            return isWhole ? kDone : kUsageOrSystem;
        }
        if (!report.empty()) {
            WriteReport(report, m_format, UsesColor(m_color, console.IsOutTerminal()),
                        console.Out());
        }
        if (!isWhole) {
            return kUsageOrSystem;
        }
        return StatusOf(report, m_failOn);
    }

private:
    // Leaves out files that can't be read.
    Report CheckFiles(const Console& console) const {
        const MasterKey key = console.ReadKey(m_keyFile);
        const ProtectionKeys keys = key.Derive();
        CheckOptions options(keys);
        options.rejectsKey =
            !m_allowsDevelopmentKey && MasterKey::IsOfDevelopmentKey(key.Fingerprint());
        options.isShipped = m_isShipped;
        options.reference = m_reference;
        options.required = m_required;
        ChooseSeverities(m_errors, m_warnings, m_disabled, options);
        const std::optional<std::string> base =
            m_base.empty() ? std::nullopt : std::optional(ReadFile(m_base));
        options.base = base;
        Baseline baseline =
            m_baseline.empty() ? Baseline() : Baseline(ReadFile(m_baseline), m_baseline);
        Progress progress(console.ErrTerminal());
        Report report;
        std::size_t number = 0;
        for (const std::string& file : m_files) {
            progress.Show("checking file " + std::to_string(++number) + " of " +
                          std::to_string(m_files.size()));
            const std::optional<FileSnapshot> content = console.ReadOrSay(file);
            if (!content) {
                continue;
            }
            RuleFindings findings = CheckStrings(content->bytes, options);
            baseline.RemoveKnown(findings);
            report.push_back({NameOf(file, m_stdinName), std::move(findings)});
        }
        return report;
    }

    void WriteBaseline(const Report& report, std::ostream& out) const {
        Baseline baseline;
        for (const FileReport& file : report) {
            baseline.Add(file.findings);
        }
        const std::string text = baseline.Text();
        if (m_newBaseline == "-") {
            out << text;
        } else {
            ReadOwnOutput(m_newBaseline, "check", Baseline::IsBaseline);
            WriteFile(m_newBaseline, [&](const TakePiece& take) { take(text); });
        }
    }

    std::vector<std::string> m_files;
    std::string m_stdinName;
    bool m_isShipped = false;
    std::string m_keyFile;
    bool m_allowsDevelopmentKey = false;
    std::string m_base;
    std::string m_reference;
    std::vector<std::string> m_required;
    std::vector<std::string> m_errors;
    std::vector<std::string> m_warnings;
    std::vector<std::string> m_disabled;
    std::string m_baseline;
    std::string m_newBaseline;
    std::string m_format = "text";
    std::string m_failOn = "error";
    std::string m_color = "auto";
};

}  // namespace

std::unique_ptr<Command> MakeCheck() {
    return std::make_unique<Check>();
}
