#ifndef ORVALANGUAGE_TOOLS_PAGE_HTML_H
#define ORVALANGUAGE_TOOLS_PAGE_HTML_H

#include <string>
#include <string_view>

// A text in HTML, as an element's content or in a quoted attribute. Bytes that are not UTF-8, and
// control characters but tabs and line feeds, are replaced by U+FFFD.
std::string HtmlText(std::string_view text);

// The source of a Content-Security-Policy that allows an inline style or script of exactly these
// bytes.
std::string InlineSource(std::string_view bytes);

#endif
