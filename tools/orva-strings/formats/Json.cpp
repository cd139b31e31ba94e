#include "tools/orva-strings/cli/Json.h"

#include "tools/orva-strings/formats/Counts.h"
#include "tools/orva-strings/formats/Report.h"

// Line by line: a whole document would take many times the memory of its findings.
void WriteJson(const Report& report, std::ostream& out) {
    out << "{\"version\":1,\"findings\":[";
    const char* separator = "\n";
    for (const FileReport& file : report) {
        for (const RuleFinding& finding : file.findings) {
            out << separator << "{\"file\":" << JsonText(file.file);
            if (finding.place) {
                out << ",\"line\":" << finding.place->line + 1
                    << ",\"column\":" << finding.place->column + 1;
            }
            out << ",\"severity\":\"" << NameOf(finding.severity) << "\",\"rule\":\""
                << TextOf(finding.rule).name << "\",\"section\":" << JsonText(finding.section)
                << ",\"key\":" << JsonText(finding.key) << ",\"message\":" << JsonText(finding.text)
                << '}';
            separator = ",\n";
        }
    }
    const Counts counts = CountsIn(report);
    out << "],\n\"errors\":" << counts.errors << ",\"warnings\":" << counts.warnings
        << ",\"files\":" << report.size() << "}\n";
}
