// What a file's bytes say about how its text is written.
#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_ENCODING_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_ENCODING_H

#include <string_view>

// Whether a file is in UTF-16: it begins with its byte-order mark, or with two ASCII characters in
// it.
bool IsUtf16(std::string_view bytes);

// Whether a file has no line feed but a carriage return before its last byte, so that to the library
// it is a single line.
bool HasOnlyCarriageReturns(std::string_view bytes);

#endif
