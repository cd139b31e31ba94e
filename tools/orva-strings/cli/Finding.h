#ifndef ORVALANGUAGE_TOOLS_CLI_FINDING_H
#define ORVALANGUAGE_TOOLS_CLI_FINDING_H

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

enum class Severity { kNote, kWarning, kError };

// One thing that the command has to say.
struct Finding {
    Severity severity;
    std::optional<std::size_t> line;  // from 0; absent if no single line is meant
    std::string text;
};
using Findings = std::vector<Finding>;

bool HasError(const Findings& findings);

// Writes "SUBJECT:LINE: SEVERITY: TEXT" as one line to err, subject and text Printable. The line is
// one write, so that those of commands which share a pipe do not mix. The subject is the file's name,
// or the command's own.
void Print(const Finding& finding, std::string_view subject, std::ostream& err);

#endif
