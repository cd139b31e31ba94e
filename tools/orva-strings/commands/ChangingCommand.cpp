#include "tools/orva-strings/commands/ChangingCommand.h"

#include "tools/orva-strings/cli/UsageError.h"
#include "tools/orva-strings/commands/CommonArguments.h"
#include "tools/orva-strings/system/Files.h"

void ChangingCommand::Declare(Arguments& arguments) {
    arguments.Add(kStringsFile, m_file);
    arguments.AddFlag("--in-place",
                      "Write the result to FILE, whole or not at all, instead of standard output",
                      m_isInPlace);
    arguments.Add({"-o,--output", "OUTPUT",
                   "Write the result to OUTPUT, whole or not at all; - is standard output",
                   Role::kOutput, false, "--in-place"},
                  m_output);
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
    if (m_isInPlace) {
        if (document.IsChanged()) {
            ReplaceFile(m_file, before, result);
        }
    } else if (m_output.empty() || m_output == "-") {
        result([&](std::string_view piece) { console.Out() << piece; });
    } else {
        WriteFile(m_output, result);
    }
    return kDone;
}
