#include "tools/orva-strings/document/UnifiedDiff.h"

#include "tools/orva-strings/cli/Printable.h"

void WriteDiffNames(const std::string& file, const char* what, std::ostream& out) {
    // A tab ends a name that has blanks.
    const std::string name = Printable(file);
    const char* const tab = name.find(' ') == std::string::npos ? "" : "\t";
    out << "--- " << name << tab << "\n+++ " << name << " (" << what << ')' << tab << '\n';
}

void WriteDiffLine(char mark, std::string_view text, std::string_view ending, std::ostream& out) {
    out << mark << text << ending;
    if (ending.empty() || ending.back() != '\n') {
        out << "\n\\ No newline at end of file\n";
    }
}
