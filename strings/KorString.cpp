#include <cstring>

#include <OrvaLanguage/KorString.h>

namespace {

constexpr char kEscape[] = "\\n";
constexpr std::size_t kEscapeLength = 2;
constexpr std::size_t kShortestKey = 4;

char LowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Whether two texts differ in the case of ASCII letters at most. strcasecmp would follow the host's
// locale: after setlocale to a Turkish one, "Italiano" would not find ITALIANO.
bool EqualButForCase(const char* a, const char* b) {
    while (*a != '\0' && LowerAscii(*a) == LowerAscii(*b)) {
        ++a;
        ++b;
    }
    return LowerAscii(*a) == LowerAscii(*b);
}

// What SearchLanguageKey and SearchRegionKey have in common.
bool SearchKey(const std::string& line, const char* keyword, const char* name) {
    if (name == nullptr || line.empty()) {
        return false;
    }
    const std::size_t length = std::strlen(keyword);
    if (line.compare(0, length, keyword, length) != 0) {
        return false;
    }
    return name[0] == '\0' || EqualButForCase(line.c_str() + length, name);
}

}  // namespace

const char* KorString::LANG_STATEMENT = "QVLANG=";
const char* KorString::REGION_STATEMENT = "QVREGION=";

bool KorString::GetLine(std::ifstream& stream, std::string& line) {
    if (!std::getline(stream, line)) {
        return false;
    }
    if (!line.empty() && line.back() == '\r') {
        line.pop_back();
    }
    return true;
}

bool KorString::SearchLanguageKey(std::string line, const char* language) {
    return SearchKey(line, LANG_STATEMENT, language);
}

bool KorString::SearchRegionKey(std::string line, const char* region) {
    return SearchKey(line, REGION_STATEMENT, region);
}

std::string KorString::ConvertNewLine(const std::string* text) {
    // One pass from left to right: replacing in place would move the rest of the text each time.
    std::string converted;
    converted.reserve(text->size());  // growing with the text, it would take twice as much
    std::size_t from = 0;
    for (std::size_t found = text->find(kEscape); found != std::string::npos;
         found = text->find(kEscape, from)) {
        converted.append(*text, from, found - from);
        converted += '\n';
        from = found + kEscapeLength;
    }
    converted.append(*text, from);
    return converted;
}

bool KorString::GetLocalizedElement(std::string line, std::string* key, std::string* value) {
    const std::size_t equals = line.find('=');
    // A key of fewer than four bytes is refused on purpose, so that short scraps of text which
    // happen to hold "=" do not become entries.
    if (equals == std::string::npos || equals < kShortestKey) {
        return false;
    }
    *key = line.substr(0, equals);
    const std::size_t first = line.find('"', equals + 1);
    if (first == std::string::npos) {
        *value = line.substr(equals + 1);
        return true;
    }
    // What lies between the quotes is what is left of the line, a copy of the caller's. One quote
    // alone is the first: a value whose closing quote was forgotten is read to the end of its line.
    const std::size_t last = line.rfind('"');
    if (last != first) {
        line.erase(last);
    }
    line.erase(0, first + 1);
    *value = ConvertNewLine(&line);
    return true;
}
