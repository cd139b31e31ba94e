#include <OrvaLanguage/KorString.h>

#include "strings/Line.h"

namespace {

void AssignUnescaped(std::string& to, std::string_view text) {
    const std::string_view unescaped = Unescape(text, to);
    if (unescaped.data() != to.data()) {
        to = unescaped;
    }
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
    return language != nullptr && IsHeader(line, LANG_STATEMENT, language);
}

bool KorString::SearchRegionKey(std::string line, const char* region) {
    return region != nullptr && IsHeader(line, REGION_STATEMENT, region);
}

std::string KorString::ConvertNewLine(const std::string* text) {
    std::string converted;
    AssignUnescaped(converted, *text);
    return converted;
}

bool KorString::GetLocalizedElement(std::string line, std::string* key, std::string* value) {
    const std::optional<LineEntry> entry = SplitEntry(line);
    if (!entry.has_value()) {
        return false;
    }
    *key = entry->key;
    if (entry->isQuoted) {
        AssignUnescaped(*value, entry->value);
    } else {
        *value = entry->value;
    }
    return true;
}
