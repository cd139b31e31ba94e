#include "tools/orva-strings/formats/Counts.h"

#include "tools/orva-strings/cli/Count.h"

Counts CountsIn(const Report& report) {
    Counts counts;
    for (const FileReport& file : report) {
        for (const RuleFinding& finding : file.findings) {
            counts.errors += finding.severity == Severity::kError ? 1U : 0U;
            counts.warnings += finding.severity == Severity::kWarning ? 1U : 0U;
        }
    }
    return counts;
}

std::string Summary(const Report& report) {
    const Counts counts = CountsIn(report);
    std::string summary;
    if (counts.errors > 0) {
        summary = Count(counts.errors, "error", "errors");
    }
    if (counts.warnings > 0) {
        summary += summary.empty() ? "" : " and ";
        summary += Count(counts.warnings, "warning", "warnings");
    }
    const std::string files = Count(report.size(), "file", "files");
    return (summary.empty() ? "no findings" : summary) + " in " + files;
}
