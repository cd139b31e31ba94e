// How a command changes a file itself, or says how it would.
#ifndef ORVALANGUAGE_TOOLS_COMMANDS_FILECHANGE_H
#define ORVALANGUAGE_TOOLS_COMMANDS_FILECHANGE_H

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "tools/orva-strings/cli/Arguments.h"
#include "tools/orva-strings/cli/Console.h"
#include "tools/orva-strings/system/Files.h"

// The arguments --diff and --check.
struct ChangeFlags {
    void Declare(Arguments& arguments);

    bool isDiff = false;
    bool isCheck = false;
};

struct FileChange {
    std::string summary;  // what is done or, with --check, would be; empty if nothing is
    BytesInPieces result;
    std::function<void(std::ostream& out)> writeDiff;
};

// "mended 1 line, removed 2 duplicates and ..." of these parts, each a verb and what is done, such as
// {"mend", "mended", "1 line"}.
struct ChangePart {
    const char* planned;
    const char* done;
    std::string what;
};
std::string SummaryOf(const std::vector<ChangePart>& parts, bool isOnlyPlanned);

// Replaces the file, or writes the result to standard output if it is "-", or does what the flags
// say. Returns the exit status.
ExitStatus ApplyChange(const FileChange& change, const std::string& file,
                       const FileSnapshot& before, const ChangeFlags& flags,
                       const Console& console);

#endif
