#ifndef ORVALANGUAGE_TOOLS_CLI_FINDING_H
#define ORVALANGUAGE_TOOLS_CLI_FINDING_H

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

enum class Severity { kNote, kWarning, kError };

// "error", "warning" or "note".
const char* NameOf(Severity severity);

// One message, about a file or the command.
struct Finding {
    Severity severity;
    std::optional<std::size_t> line;  // from 0; absent if not about a single line
    std::string text;
};
using Findings = std::vector<Finding>;

bool HasError(const Findings& findings);

// The same findings, none of them an error.
Findings AsWarnings(Findings findings);

// Writes the line "SUBJECT:LINE: SEVERITY: TEXT" to err, with subject and text escaped by
// Printable. Each line is one write, so that commands sharing a pipe do not mix theirs. The subject
// is the name of the file or of the command.
void Print(const Finding& finding, std::string_view subject, std::ostream& err);

#endif
