#include "tools/orva-strings/commands/ReportArguments.h"

#include "tools/orva-strings/formats/Counts.h"

void WriteReport(const Report& report, const std::string& format, bool isColored,
                 std::ostream& out) {
    if (format == "json") {
        WriteJson(report, out);
    } else if (format == "sarif") {
        WriteSarif(report, out);
    } else if (format == "github") {
        WriteGitHub(report, out);
    } else {
        WriteText(report, isColored, out);
    }
}

ExitStatus StatusOf(const Report& report, const std::string& failOn) {
    const Counts counts = CountsIn(report);
    return counts.errors > 0 || (failOn == "warning" && counts.warnings > 0) ? kFindings : kDone;
}
