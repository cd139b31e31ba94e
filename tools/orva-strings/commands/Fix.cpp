#include <algorithm>
#include <exception>
#include <new>
#include <ostream>
#include <string>
#include <vector>

#include "tools/orva-strings/cli/Command.h"
#include "tools/orva-strings/cli/Count.h"
#include "tools/orva-strings/commands/CommonArguments.h"
#include "tools/orva-strings/commands/FileChange.h"
#include "tools/orva-strings/document/FixDiff.h"
#include "tools/orva-strings/document/FixedStrings.h"

namespace {

// What is done to a file, or would be if it is only planned; empty if nothing is.
std::string Changes(const FixedStrings& fixed, bool isOnlyPlanned) {
    std::size_t mended = 0;
    std::size_t removed = 0;
    fixed.VisitLines([&](const FixedLine& line) {
        removed += line.isDuplicate ? 1 : 0;
        mended += line.IsChanged() && !line.isDuplicate ? 1U : 0U;
    });
    std::vector<ChangePart> parts;
    if (fixed.HasNewLineEnds()) {
        parts.push_back({"replace", "replaced", "the carriage returns by line feeds"});
    }
    if (mended > 0) {
        parts.push_back({"mend", "mended", Count(mended, "line", "lines")});
    }
    if (removed > 0) {
        parts.push_back({"remove", "removed", Count(removed, "duplicate", "duplicates")});
    }
    return SummaryOf(parts, isOnlyPlanned);
}

class Fix : public Command {
public:
    Fix()
        : Command({"fix",
                   "Mend what has exactly one right answer",
                   {"fix --diff Sample.strings", "fix Sample.strings"}}) {}

    void Declare(Arguments& arguments) override {
        arguments.Add(kStringsFiles, m_files);
        m_flags.Declare(arguments);
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
            const FileChange change = {
                Changes(fixed, m_flags.isCheck),
                [&](const TakePiece& take) { fixed.WriteInPieces(take); },
                [&](std::ostream& out) { WriteFixDiff(file, before.bytes, fixed, out); }};
            return ApplyChange(change, file, before, m_flags, console);
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception& exception) {
            console.Say(Severity::kError, exception.what());
            return kUsageOrSystem;
        }
    }

    std::vector<std::string> m_files;
    ChangeFlags m_flags;
};

}  // namespace

std::unique_ptr<Command> MakeFix() {
    return std::make_unique<Fix>();
}
