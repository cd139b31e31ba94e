#ifndef ORVALANGUAGE_FUZZ_NAIVESTRINGS_H
#define ORVALANGUAGE_FUZZ_NAIVESTRINGS_H

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// A second reader of strings files, byte by byte and as simple as possible, to compare the library
// with. It shares no code with the library.
namespace naive {

inline std::vector<std::string> Lines(const std::string& bytes) {
    std::vector<std::string> lines;
    std::string line;
    bool isOpen = false;
    for (const char c : bytes) {
        if (c != '\n') {
            line += c;
            isOpen = true;
            continue;
        }
        lines.push_back(line);
        line = "";
        isOpen = false;
    }
    if (isOpen) {
        lines.push_back(line);
    }
    for (std::string& each : lines) {
        if (!each.empty() && each[each.size() - 1] == '\r') {
            each = each.substr(0, each.size() - 1);
        }
    }
    return lines;
}

inline std::string Lower(std::string text) {
    const std::string upper = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    for (char& c : text) {
        for (int i = 0; i < 26; ++i) {
            c = c == upper[static_cast<std::size_t>(i)] ? static_cast<char>('a' + i) : c;
        }
    }
    return text;
}

// Whether a line is the header of the section with this name ("": any section). Names end at a NUL,
// as C strings do.
inline bool IsHeader(const std::string& line, const std::string& keyword, const std::string& name) {
    if (line.size() < keyword.size() || line.substr(0, keyword.size()) != keyword) {
        return false;
    }
    const std::string rest = line.substr(keyword.size());
    return name.empty() || Lower(rest.substr(0, rest.find('\0'))) == Lower(name);
}

inline std::string Expanded(const std::string& text) {
    std::string expanded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size() && text[i + 1] == 'n') {
            expanded += '\n';
            ++i;
        } else {
            expanded += text[i];
        }
    }
    return expanded;
}

inline std::optional<std::pair<std::string, std::string>> Entry(const std::string& line) {
    std::string key;
    std::size_t i = 0;
    for (; i < line.size() && line[i] != '='; ++i) {
        key += line[i];
    }
    if (i == line.size() || key.size() < 4) {
        return std::nullopt;
    }
    const std::string raw = line.substr(i + 1);
    std::vector<std::size_t> quotes;
    for (std::size_t q = 0; q < raw.size(); ++q) {
        if (raw[q] == '"') {
            quotes.push_back(q);
        }
    }
    if (quotes.empty()) {
        return std::make_pair(key, raw);
    }
    std::string quoted;
    for (std::size_t q = 0; q < raw.size(); ++q) {
        if (q > quotes.front() && (quotes.size() == 1 || q < quotes.back())) {
            quoted += raw[q];
        }
    }
    return std::make_pair(key, Expanded(quoted));
}

// The table that a load of this language makes.
inline std::map<std::string, std::string> Table(const std::string& bytes,
                                                const std::string& language) {
    const std::vector<std::string> lines = Lines(bytes);
    std::size_t header = 0;
    while (header < lines.size() && !IsHeader(lines[header], "QVLANG=", language)) {
        ++header;
    }
    if (header == lines.size()) {
        header = 0;
        while (header < lines.size() && !IsHeader(lines[header], "QVLANG=", "")) {
            ++header;
        }
    }
    std::map<std::string, std::string> table;
    for (std::size_t i = header; i < lines.size(); ++i) {
        if (i > header && IsHeader(lines[i], "QVLANG=", "")) {
            break;
        }
        if (const auto entry = Entry(lines[i])) {
            table.insert(*entry);
        }
    }
    return table;
}

}  // namespace naive

#endif
