// What a line of a strings file means. The library's line functions, its loader and the command all
// use these, so that they read every line alike.
#ifndef ORVALANGUAGE_STRINGS_LINE_H
#define ORVALANGUAGE_STRINGS_LINE_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// The length of a line's text. line is given without its line feed; one carriage return at its very
// end belongs to the ending, too.
inline std::size_t TextLength(std::string_view line) {
    return !line.empty() && line.back() == '\r' ? line.size() - 1 : line.size();
}

// Whether a section's name, up to its end or its first NUL, equals the requested one, ignoring the
// case of ASCII letters.
bool IsName(std::string_view name, const char* requested);

// Whether a line begins with the exact keyword, and the rest is the requested name; "" requests any.
// An empty line never does.
inline bool IsHeader(std::string_view line, const char* keyword, const char* requested) {
    if (line.empty()) {
        return false;
    }
    // Most lines differ in the first byte, before a call could find out the keyword's length.
    for (; *keyword != '\0'; ++keyword) {
        if (line.empty() || line.front() != *keyword) {
            return false;
        }
        line.remove_prefix(1);
    }
    return requested[0] == '\0' || IsName(line, requested);
}

// An entry's key and value as a line has them.
struct LineEntry {
    std::string_view key;
    std::string_view value;
    bool isQuoted;  // the value follows a quote, so its escapes count
};

// Splits a line at its first "=". Nothing if the line is not an entry.
inline std::optional<LineEntry> SplitEntry(std::string_view line) {
    // Shorter keys are rejected so that short scraps of text that happen to hold "=" do not become
    // entries.
    constexpr std::size_t kMinKeyLength = 4;
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos || equals < kMinKeyLength) {
        return std::nullopt;
    }
    const std::string_view key = line.substr(0, equals);
    const std::string_view rest = line.substr(equals + 1);
    // Most values begin with their quote.
    const std::size_t first = !rest.empty() && rest.front() == '"' ? 0 : rest.find('"');
    if (first == std::string_view::npos) {
        return LineEntry{key, rest, false};
    }
    // If the closing quote was forgotten, the value runs to the end of the line.
    const std::size_t last = rest.rfind('"');
    const std::size_t end = last == first ? rest.size() : last;
    return LineEntry{key, rest.substr(first + 1, end - first - 1), true};
}

// Replaces each "\n" escape (a backslash and a lower-case n) by a line feed. The result is text
// itself if it has no escape, otherwise it is in buffer, whose content is replaced. Throws
// std::bad_alloc.
std::string_view Unescape(std::string_view text, std::string& buffer);

#endif
