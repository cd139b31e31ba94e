#include <algorithm>
#include <exception>
#include <new>
#include <string>
#include <vector>

#include "tools/orva-strings/cli/Command.h"
#include "tools/orva-strings/cli/Count.h"
#include "tools/orva-strings/commands/CommonArguments.h"
#include "tools/orva-strings/document/FixDiff.h"
#include "tools/orva-strings/document/FixedStrings.h"
#include "tools/orva-strings/system/Files.h"

namespace {

// What is done to a file, or would be if it is only planned; empty if nothing is.
std::string Changes(const FixedStrings& fixed, bool isOnlyPlanned) {
    std::size_t mended = 0;
    std::size_t removed = 0;
    fixed.VisitLines([&](const FixedLine& line) {
        removed += line.isDuplicate ? 1 : 0;
        mended += line.IsChanged() && !line.isDuplicate ? 1U : 0U;
    });
    std::vector<std::string> parts;
    const auto add = [&](const char* planned, const char* done, const std::string& what) {
        parts.push_back((isOnlyPlanned ? planned : done) + (' ' + what));
    };
    if (fixed.HasNewLineEnds()) {
        add("replace", "replaced", "the carriage returns by line feeds");
    }
    if (mended > 0) {
        add("mend", "mended", Count(mended, "line", "lines"));
    }
    if (removed > 0) {
        add("remove", "removed", Count(removed, "duplicate", "duplicates"));
    }
    std::string sentence;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i > 0) {
            sentence += i + 1 < parts.size() ? ", " : " and ";
        }
        sentence += parts[i];
    }
    return sentence.empty() || !isOnlyPlanned ? sentence : "would " + sentence;
}

class Fix : public Command {
public:
    Fix()
        : Command({"fix",
                   "Mend what has exactly one right answer",
                   {"fix --diff Sample.strings", "fix Sample.strings"}}) {}

    void Declare(Arguments& arguments) override {
        arguments.Add(kStringsFiles, m_files);
        arguments.AddFlag("--diff",
                          "Change nothing; show what would change, as a unified diff, and end with "
                          "exit status 1 if anything would",
                          m_isDiff);
        arguments.AddFlag(kCheckFlag, kCheckHelp, m_isCheck);
    }

    ExitStatus Run(const Console& console) override {
        ExitStatus status = kDone;
        for (const std::string& file : m_files) {
            status = std::max(status, FixFile(file, console));
        }
        return status;
    }

private:
    // A file that can't be read or written does not keep the others from being mended.
    ExitStatus FixFile(const std::string& file, const Console& console) const {
        try {
            const FileSnapshot before = console.Read(file);
            const FixedStrings fixed(before.bytes);
            if (const auto obstacle = fixed.Obstacle()) {
                return console.Report({*obstacle}, file);
            }
            return Apply(fixed, file, before, console);
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception& exception) {
            console.Say(Severity::kError, exception.what());
            return kUsageOrSystem;
        }
    }

    ExitStatus Apply(const FixedStrings& fixed, const std::string& file, const FileSnapshot& before,
                     const Console& console) const {
        const std::string changes = Changes(fixed, m_isCheck);
        const auto write = [&](const TakePiece& take) { fixed.WriteInPieces(take); };
        if (m_isDiff) {
            WriteFixDiff(file, before.bytes, fixed, console.Out());
        } else if (m_isCheck && !changes.empty()) {
            console.SayDone(file, changes, [] {});
        } else if (!m_isCheck && file == "-") {
            write([&](std::string_view piece) { console.Out() << piece; });
        } else if (!changes.empty()) {
            console.SayDone(file, changes, [&] { ReplaceFile(file, before, write); });
        }
        return !changes.empty() && (m_isDiff || m_isCheck) ? kFindings : kDone;
    }

    std::vector<std::string> m_files;
    bool m_isDiff = false;
    bool m_isCheck = false;
};

}  // namespace

std::unique_ptr<Command> MakeFix() {
    return std::make_unique<Fix>();
}
