#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "tools/orva-strings/cli/Command.h"
#include "tools/orva-strings/cli/Count.h"
#include "tools/orva-strings/commands/CommonArguments.h"
#include "tools/orva-strings/commands/FileChange.h"
#include "tools/orva-strings/document/SyncDiff.h"
#include "tools/orva-strings/document/SyncedStrings.h"

namespace {

constexpr Argument kSection = {"--language", "SECTION",
                               "A section to change, instead of all; may be given several times"};

constexpr Argument kFill = {
    "--fill",
    "TEXTS",
    "Whether to add the entries that are missing, with the reference's texts; none by default",
    Role::kText,
    false,
    nullptr,
    "reference|none"};

// What is done to a file, or would be if it is only planned; empty if nothing is.
std::string Changes(const SyncedStrings& synced, bool isOnlyPlanned) {
    std::size_t moved = 0;
    std::size_t added = 0;
    for (const SyncedLine& line : synced.Lines()) {
        moved += line.isEntry && line.hasMoved && line.before ? 1U : 0U;
        added += line.before ? 0U : 1U;
    }
    std::vector<ChangePart> parts;
    const auto add = [&](const char* planned, const char* done, std::size_t count) {
        if (count > 0) {
            parts.push_back({planned, done, Count(count, "entry", "entries")});
        }
    };
    add("move", "moved", moved);
    add("add", "added", added);
    add("remove", "removed", synced.Pruned());
    return SummaryOf(parts, isOnlyPlanned);
}

class Sync : public Command {
public:
    Sync()
        : Command({"sync",
                   "Bring the entries of translations into the order of the reference",
                   {"sync --diff Source.strings", "sync --fill reference Source.strings"}}) {}

    void Declare(Arguments& arguments) override {
        arguments.Add(kStringsFile, m_file);
        arguments.Add(kSection, m_options.languages);
        arguments.Add(kReference, m_options.reference);
        arguments.Add(kFill, m_fill);
        arguments.AddFlag("--prune", "Remove the entries whose keys the reference lacks",
                          m_options.isPruned);
        m_flags.Declare(arguments);
    }

    ExitStatus Run(const Console& console) override {
        m_options.isFilled = m_fill == "reference";
        const FileSnapshot before = console.Read(m_file);
        const SyncedStrings synced(before.bytes, m_options);
        if (const ExitStatus status = console.Report(synced.Obstacles(), m_file); status != kDone) {
            return status;
        }
        const FileChange change = {
            Changes(synced, m_flags.isCheck),
            [&](const TakePiece& take) { synced.WriteInPieces(take); },
            [&](std::ostream& out) { WriteSyncDiff(m_file, before.bytes, synced, out); }};
        return ApplyChange(change, m_file, before, m_flags, console);
    }

private:
    std::string m_file;
    SyncOptions m_options;
    std::string m_fill = "none";
    ChangeFlags m_flags;
};

}  // namespace

std::unique_ptr<Command> MakeSync() {
    return std::make_unique<Sync>();
}
