#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_DIRECTIVE_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_DIRECTIVE_H

#include <cstddef>
#include <optional>
#include <string_view>

#include "tools/orva-strings/document/StringsReader.h"

// What a comment tells the command, as in "# orva: max-length 12".
struct Directive {
    std::string_view name;
    std::string_view value;  // the rest, without the blanks at its ends
};

// The directive that a line's text is, if its comment says "orva:" first.
std::optional<Directive> ReadDirective(std::string_view text);

// The first word of a text, without the blanks before it. Removes both from the text.
std::string_view TakeWord(std::string_view& text);

// The number that a text is, in decimal digits.
std::optional<std::size_t> ReadNumber(std::string_view text);

// The name of the directive that limits the texts of the next line's key.
constexpr std::string_view kMaxLengthDirective = "max-length";

// The name of the directive, right below a section's header, that says the section's language.
constexpr std::string_view kLanguageDirective = "language";

// Whether the line below a reader's line is right below a section's header: only comments and blank
// lines may come between. wasBelow is the answer for the reader's line.
bool IsRightBelowHeader(const StringsReader& line, bool wasBelow);

// Whether a text has the form of a language code, as in BCP 47: a language of two or three letters,
// then subtags of up to eight letters and digits, as in "zh-Hant-TW".
bool IsLanguageCode(std::string_view text);

#endif
