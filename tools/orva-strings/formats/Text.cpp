#include <string>

#include "tools/orva-strings/cli/Printable.h"
#include "tools/orva-strings/formats/Counts.h"
#include "tools/orva-strings/formats/Report.h"

namespace {

constexpr char kRed[] = "\x1b[1;31m";
constexpr char kYellow[] = "\x1b[1;33m";
constexpr char kCyan[] = "\x1b[36m";
constexpr char kPlain[] = "\x1b[0m";

}  // namespace

void WriteText(const Report& report, bool isColored, std::ostream& out) {
    const auto painted = [isColored](const char* color, const std::string& text) {
        return isColored ? color + text + kPlain : text;
    };
    for (const FileReport& file : report) {
        const std::string name = Printable(file.file);
        for (const RuleFinding& finding : file.findings) {
            out << name;
            if (finding.place) {
                out << ':' << finding.place->line + 1 << ':' << finding.place->column + 1;
            }
            out << ": "
                << painted(finding.severity == Severity::kError ? kRed : kYellow,
                           NameOf(finding.severity))
                << ": " << Printable(finding.text) << " ["
                << painted(kCyan, TextOf(finding.rule).name) << "]\n";
        }
    }
    out << Summary(report) << '\n';
}
