#ifndef ORVALANGUAGE_TOOLS_CLI_PRINTABLE_H
#define ORVALANGUAGE_TOOLS_CLI_PRINTABLE_H

#include <string>
#include <string_view>

// Escapes untrusted text, reversibly, so that its control characters cannot drive the terminal. A
// backslash becomes \\, a double quote \", a line feed \n, a tab \t. Each byte of any other control
// character (in ASCII, or U+0080 to U+009F in UTF-8) becomes \x and two upper-case hexadecimal
// digits. Everything else is unchanged.
std::string Printable(std::string_view text);

// The same for a section's name, between double quotes if it is empty or has blanks at its ends,
// which would not be seen.
std::string PrintableName(std::string_view name);

#endif
