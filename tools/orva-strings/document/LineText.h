// What a line's text is to a person, beyond what the library reads in it.
#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_LINETEXT_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_LINETEXT_H

#include <string_view>

// A text without the blanks and tabs at its ends.
std::string_view TrimBlanks(std::string_view text);

// A text without the UTF-8 byte-order marks that it begins with.
std::string_view WithoutByteOrderMarks(std::string_view text);

// Whether a line was meant as a comment: after any blanks, it begins with #, ;, //, /*, * or --.
bool IsCommentLike(std::string_view text);

// Whether git left a line where it could not merge.
bool IsConflictMarker(std::string_view text);

#endif
