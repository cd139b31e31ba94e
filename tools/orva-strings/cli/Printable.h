#ifndef ORVALANGUAGE_TOOLS_CLI_PRINTABLE_H
#define ORVALANGUAGE_TOOLS_CLI_PRINTABLE_H

#include <string>
#include <string_view>

// A text from a file or the user, safe for a terminal, which obeys control characters, and readable
// back: a backslash becomes \\, a double quote \", a line feed \n, a tab \t, and each byte of any
// other control character, in ASCII or of U+0080 to U+009F in UTF-8, \x and two upper-case
// hexadecimal digits. All else stays as it is.
std::string Printable(std::string_view text);

#endif
