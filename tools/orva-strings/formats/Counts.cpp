#include "tools/orva-strings/formats/Counts.h"

namespace {

std::string Counted(std::size_t count, const char* what) {
    return std::to_string(count) + ' ' + what + (count == 1 ? "" : "s");
}

}  // namespace

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
        summary = Counted(counts.errors, "error");
    }
    if (counts.warnings > 0) {
        summary += summary.empty() ? "" : " and ";
        summary += Counted(counts.warnings, "warning");
    }
    return (summary.empty() ? "no findings" : summary) + " in " + Counted(report.size(), "file");
}
