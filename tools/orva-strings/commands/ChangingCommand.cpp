#include "tools/orva-strings/commands/ChangingCommand.h"

#include "tools/orva-strings/cli/Count.h"
#include "tools/orva-strings/cli/UsageError.h"
#include "tools/orva-strings/commands/CommonArguments.h"
#include "tools/orva-strings/system/Files.h"

namespace {

std::size_t CountProtected(StringsReader lines) {
    std::size_t count = 0;
    while (lines.Next()) {
        count += lines.IsInSection() && IsProtectedEntry(lines.Line().text) ? 1U : 0U;
    }
    return count;
}

}  // namespace

void ChangingCommand::Declare(Arguments& arguments) {
    arguments.Add(kStringsFile, m_file);
    arguments.AddFlag("--in-place",
                      "Write the result to FILE, whole or not at all, instead of standard output",
                      m_isInPlace);
    arguments.Add({"-o,--output", "OUTPUT", kOutputHelp, Role::kOutput, false, "--in-place"},
                  m_output);
    arguments.AddFlag(kCheckFlag, kCheckHelp, m_isCheck);
}

ExitStatus ChangingCommand::Run(const Console& console) {
    if (m_isInPlace && m_file == "-") {
        throw UsageError("--in-place needs a file, not -");
    }
    const FileSnapshot before = console.Read(m_file);
    StringsDocument document(before.bytes);
    const ExitStatus status = console.Report(Change(document, console), m_file);
    if (status != kDone) {
        return status;
    }
    const auto result = [&](const TakePiece& take) { document.WriteInPieces(take); };
    if (m_isCheck) {
        if (!document.IsChanged()) {
            return kDone;
        }
        console.SayDone(m_file, SummaryOf(document), [] {});
        return kFindings;
    }
    if (m_isInPlace) {
        console.SayDone(m_file, SummaryOf(document), [&] {
            if (document.IsChanged()) {
                ReplaceFile(m_file, before, result);
            }
        });
    } else if (m_output.empty() || m_output == "-") {
        result([&](std::string_view piece) { console.Out() << piece; });
    } else {
        console.SayDone(m_output, SummaryOf(document), [&] { WriteFile(m_output, result); });
    }
    return kDone;
}

std::string ChangingCommand::SummaryOf(const StringsDocument& document) const {
    const std::size_t stayed = CountProtected(document.Lines()) - document.ChangeCount();
    std::string summary = m_isCheck ? m_words.wouldChange : m_words.changed;
    summary += ' ' + Count(document.ChangeCount(), "entry", "entries");
    if (stayed > 0) {
        summary += ", " + Count(stayed, m_words.oneStayed, m_words.manyStayed);
    }
    return summary;
}
