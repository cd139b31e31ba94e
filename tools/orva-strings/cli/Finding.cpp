#include "tools/orva-strings/cli/Finding.h"

#include <algorithm>

#include "tools/orva-strings/cli/Printable.h"

const char* NameOf(Severity severity) {
    switch (severity) {
        case Severity::kNote:
            return "note";
        case Severity::kWarning:
            return "warning";
        case Severity::kError:
            break;
    }
    return "error";
}

bool HasError(const Findings& findings) {
    return std::any_of(findings.begin(), findings.end(),
                       [](const Finding& finding) { return finding.severity == Severity::kError; });
}

Findings AsWarnings(Findings findings) {
    for (Finding& finding : findings) {
        finding.severity = std::min(finding.severity, Severity::kWarning);
    }
    return findings;
}

void Print(const Finding& finding, std::string_view subject, std::ostream& err) {
    std::string line = Printable(subject);
    if (finding.line) {
        line += ':';
        line += std::to_string(*finding.line + 1);
    }
    line += ": ";
    line += NameOf(finding.severity);
    line += ": ";
    line += Printable(finding.text);
    line += '\n';
    err.write(line.data(), static_cast<std::streamsize>(line.size()));
}
