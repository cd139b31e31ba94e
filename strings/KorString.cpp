#include <cstring>

#include <OrvaLanguage/KorString.h>

#include "strings/LineEnding.h"

namespace {

constexpr char kEscape[] = "\\n";
constexpr std::size_t kEscapeLength = 2;
constexpr std::size_t kMinKeyLength = 4;

char LowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Whether two texts are equal, ignoring the case of ASCII letters. strcasecmp would follow the
// host's locale: in a Turkish one, "Italiano" would not match ITALIANO.
bool EqualIgnoringCase(const char* a, const char* b) {
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
    return name[0] == '\0' || EqualIgnoringCase(line.c_str() + length, name);
}

}  // namespace

const char* KorString::LANG_STATEMENT = "QVLANG=";
const char* KorString::REGION_STATEMENT = "QVREGION=";

bool KorString::GetLine(std::ifstream& stream, std::string& line) {
    if (!std::getline(stream, line)) {
        return false;
    }
    if (TextLength(line) < line.size()) {
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
    // One pass: replacing in place would move the rest of the text each time.
    std::string converted;
    converted.reserve(text->size());  // growing step by step would take twice as much
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
    // Keys of fewer than four bytes are rejected so that short scraps of text that happen to hold
    // "=" do not become entries.
    if (equals == std::string::npos || equals < kMinKeyLength) {
        return false;
    }
    *key = line.substr(0, equals);
    const std::size_t first = line.find('"', equals + 1);
    if (first == std::string::npos) {
        *value = line.substr(equals + 1);
        return true;
    }
    // Cut the line, our own copy, down to what is between the quotes. If the closing quote was
    // forgotten, the value runs to the end of the line.
    const std::size_t last = line.rfind('"');
    if (last != first) {
        line.erase(last);
    }
    line.erase(0, first + 1);
    *value = ConvertNewLine(&line);
    return true;
}
