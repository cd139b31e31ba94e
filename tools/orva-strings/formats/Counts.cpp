#include "tools/orva-strings/formats/Counts.h"

#include "tools/orva-strings/cli/Count.h"

Counts CountsIn(const Report& report) {
    Counts counts;
    for (const FileReport& file : report) {
        for (const RuleFinding& finding : file.findings) {
            counts.Add(finding.severity);
        }
    }
    return counts;
}

std::string Summary(const Report& report) {
    return Summary(CountsIn(report), report.size());
}

std::string Summary(const Counts& counts, std::size_t files) {
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
    return (summary.empty() ? "no findings" : summary) + " in " + Count(files, "file", "files");
}
