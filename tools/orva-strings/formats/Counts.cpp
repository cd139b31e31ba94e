#include "tools/orva-strings/formats/Counts.h"

namespace {

std::string Counted(std::size_t count, const char* what) {
    return std::to_string(count) + ' ' + what + (count == 1 ? "" : "s");
}

}  // namespace

const char* NameOf(Severity severity) {
    return severity == Severity::kError ? "error" : "warning";
}

Counts CountsIn(const Report& report) {
    Counts counts;
    for (const FileReport& file : report) {
        for (const RuleFinding& finding : file.findings) {
            ++(finding.severity == Severity::kError ? counts.errors : counts.warnings);
        }
    }
    return counts;
}

std::string Summary(const Report& report) {
    const Counts counts = CountsIn(report);
    std::string summary;
    if (counts.errors > 0) {
        summary = Counted(counts.errors, "error");
    }
    if (counts.warnings > 0) {
        summary += summary.empty() ? "" : " and ";
        summary += Counted(counts.warnings, "warning");
    }
    return (summary.empty() ? "no findings" : summary) + " in " + Counted(report.size(), "file");
}
