#include <string>
#include <string_view>

#include "tools/orva-strings/cli/Printable.h"
#include "tools/orva-strings/formats/Counts.h"
#include "tools/orva-strings/formats/Percent.h"
#include "tools/orva-strings/formats/Report.h"

namespace {

// Escapes what would end a command, or a property of one. Printable leaves no line ends, which would
// need it too.
std::string Message(std::string_view text) {
    return PercentEncoded(Printable(text), [](char c) { return c == '%'; });
}

std::string Property(std::string_view text) {
    return PercentEncoded(Printable(text), [](char c) { return c == '%' || c == ':' || c == ','; });
}

void WriteCommands(const Report& report, bool areErrors, std::ostream& out) {
    for (const FileReport& file : report) {
        const std::string name = Property(file.file);
        for (const RuleFinding& finding : file.findings) {
            if ((finding.severity == Severity::kError) != areErrors) {
                continue;
            }
            const bool isNote = finding.severity == Severity::kNote;
            out << "::" << (isNote ? "notice" : NameOf(finding.severity)) << " file=" << name;
            if (finding.place) {
                out << ",line=" << finding.place->line + 1 << ",col=" << finding.place->column + 1;
            }
            out << ",title=" << TextOf(finding.rule).name << "::" << Message(finding.text) << '\n';
        }
    }
}

}  // namespace

void WriteGitHub(const Report& report, std::ostream& out) {
    WriteCommands(report, true, out);
    WriteCommands(report, false, out);
    out << Summary(report) << '\n';
}
