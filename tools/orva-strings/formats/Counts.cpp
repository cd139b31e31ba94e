#include "tools/orva-strings/formats/Counts.h"

#include "tools/orva-strings/cli/Count.h"

Counts CountsIn(const Report& report) {
    Counts counts;
    for (const FileReport& file : report) {
        for (const RuleFinding& finding : file.findings) {
            counts.errors += finding.severity == Severity::kError ? 1U : 0U;
            counts.warnings += finding.severity == Severity::kWarning ? 1U : 0U;
            counts.notes += finding.severity == Severity::kNote ? 1U : 0U;
        }
    }
    return counts;
}

std::string Summary(const Report& report) {
    const Counts counts = CountsIn(report);
    std::string summary;
    const auto add = [&](const std::string& count, const char* separator) {
        summary += (summary.empty() ? "" : separator) + count;
    };
    if (counts.errors > 0) {
        add(Count(counts.errors, "error", "errors"), "");
    }
    if (counts.warnings > 0) {
        add(Count(counts.warnings, "warning", "warnings"), counts.notes > 0 ? ", " : " and ");
    }
    if (counts.notes > 0) {
        add(Count(counts.notes, "note", "notes"), " and ");
    }
    const std::string files = Count(report.size(), "file", "files");
    return (summary.empty() ? "no findings" : summary) + " in " + files;
}
