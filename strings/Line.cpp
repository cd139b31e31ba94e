#include "strings/Line.h"

#include <algorithm>

namespace {

constexpr std::string_view kEscape = "\\n";

char LowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

// strcasecmp would follow the host's locale: in a Turkish one, "Italiano" would not match ITALIANO.
bool IsName(std::string_view name, const char* requested) {
    name = name.substr(0, name.find('\0'));
    for (const char c : name) {
        if (LowerAscii(c) != LowerAscii(*requested)) {
            return false;
        }
        ++requested;
    }
    return *requested == '\0';
}

std::string_view Unescape(std::string_view text, std::string& buffer) {
    // A backslash alone is found sooner, and most texts have none.
    std::size_t found = text.find(kEscape, std::min(text.find(kEscape.front()), text.size()));
    if (found == std::string_view::npos) {
        return text;
    }
    // One pass: replacing in place would move the rest of the text each time.
    buffer.clear();
    buffer.reserve(text.size());  // growing step by step would take twice as much
    std::size_t from = 0;
    for (; found != std::string_view::npos; found = text.find(kEscape, from)) {
        buffer.append(text, from, found - from);
        buffer += '\n';
        from = found + kEscape.size();
    }
    return buffer.append(text, from);
}
