#include "tools/orva-strings/commands/FileChange.h"

#include <cstddef>

#include "tools/orva-strings/commands/CommonArguments.h"

void ChangeFlags::Declare(Arguments& arguments) {
    arguments.AddFlag(kDiffFlag, kDiffHelp, isDiff);
    arguments.AddFlag(kCheckFlag, kCheckHelp, isCheck);
}

std::string SummaryOf(const std::vector<ChangePart>& parts, bool isOnlyPlanned) {
    std::string summary;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i > 0) {
            summary += i + 1 < parts.size() ? ", " : " and ";
        }
        summary += isOnlyPlanned ? parts[i].planned : parts[i].done;
        summary += ' ' + parts[i].what;
    }
    return summary.empty() || !isOnlyPlanned ? summary : "would " + summary;
}

ExitStatus ApplyChange(const FileChange& change, const std::string& file,
                       const FileSnapshot& before, const ChangeFlags& flags,
                       const Console& console) {
    const bool isChanged = !change.summary.empty();
    if (flags.isDiff) {
        change.writeDiff(console.Out());
    } else if (flags.isCheck && isChanged) {
        console.SayDone(file, change.summary, [] {});
    } else if (!flags.isCheck && file == "-") {
        change.result([&](std::string_view piece) { console.Out() << piece; });
    } else if (isChanged) {
        console.SayDone(file, change.summary, [&] { ReplaceFile(file, before, change.result); });
    }
    return isChanged && (flags.isDiff || flags.isCheck) ? kFindings : kDone;
}
