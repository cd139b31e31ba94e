// What all unified diffs have, which patch(1) can apply.
#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_UNIFIEDDIFF_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_UNIFIEDDIFF_H

#include <ostream>
#include <string>
#include <string_view>

// Writes the two lines with which a diff begins. The file's name is escaped by Printable; what says
// what the changed file is, such as "fixed".
void WriteDiffNames(const std::string& file, const char* what, std::ostream& out);

// Writes a line of a hunk as it is, after its mark: a blank, - or +.
void WriteDiffLine(char mark, std::string_view text, std::string_view ending, std::ostream& out);

#endif
