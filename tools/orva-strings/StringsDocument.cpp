#include "tools/orva-strings/StringsDocument.h"

#include <utility>

#include <OrvaLanguage/KorString.h>

#include "api/ProtectedForm.h"

namespace {

// Splits the bytes of a line, its line feed included, where the library's reading ends.
std::pair<std::string, std::string> SplitEnding(std::string_view bytes) {
    std::size_t length = bytes.size();
    if (length > 0 && bytes[length - 1] == '\n') {
        --length;
    }
    if (length > 0 && bytes[length - 1] == '\r') {
        --length;
    }
    return {std::string(bytes.substr(0, length)), std::string(bytes.substr(length))};
}

// Whether a line of this text and ending is one line, and an entry of this key and value.
bool ReadsAs(const std::string& text, const std::string& ending, const std::string& key,
             const std::string& value) {
    std::string keyRead;
    std::string valueRead;
    return text.find('\n') == std::string::npos && SplitEnding(text + ending).first == text &&
           KorString::GetLocalizedElement(text, &keyRead, &valueRead) && keyRead == key &&
           valueRead == value;
}

}  // namespace

std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '\n') {
            escaped += "\\n";
        } else {
            escaped += c;
        }
    }
    return escaped;
}

StringsDocument::StringsDocument(std::string_view bytes) {
    while (!bytes.empty()) {
        const std::size_t lineFeed = bytes.find('\n');
        const std::size_t length = lineFeed == std::string_view::npos ? bytes.size() : lineFeed + 1;
        auto [text, ending] = SplitEnding(bytes.substr(0, length));
        m_lines.push_back({std::move(text), std::move(ending)});
        bytes.remove_prefix(length);
    }
}

std::string StringsDocument::Bytes() const {
    std::string bytes;
    for (const Line& line : m_lines) {
        bytes += line.text;
        bytes += line.ending;
    }
    return bytes;
}

std::vector<StringsDocument::Section> StringsDocument::Sections() const {
    std::vector<Section> sections;
    std::string key;
    std::string value;
    for (std::size_t i = 0; i < m_lines.size(); ++i) {
        const std::string& text = m_lines[i].text;
        if (KorString::SearchLanguageKey(text, "")) {
            sections.push_back({i, text.substr(text.find('=') + 1), {}});
        } else if (!sections.empty() && KorString::GetLocalizedElement(text, &key, &value)) {
            sections.back().entries.push_back({i, key, value});
        }
    }
    return sections;
}

std::vector<StringsDocument::Entry> StringsDocument::Misplaced() const {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    std::vector<Entry> misplaced;
    const auto collect = [&misplaced](std::size_t line, const std::string& text) {
        std::string key;
        std::string value;
        if (KorString::GetLocalizedElement(text, &key, &value) &&
            (IsProtectedKey(key.c_str()) || KorString::SearchLanguageKey(text, ""))) {
            misplaced.push_back({line, key, value});
        }
    };
    bool isBeforeFirst = true;
    for (std::size_t i = 0; i < m_lines.size(); ++i) {
        const std::string& text = m_lines[i].text;
        isBeforeFirst = isBeforeFirst && !KorString::SearchLanguageKey(text, "");
        if (isBeforeFirst) {
            const bool isMarked = text.compare(0, kByteOrderMark.size(), kByteOrderMark) == 0;
            collect(i, isMarked ? text.substr(kByteOrderMark.size()) : text);
        }
        for (std::size_t at = text.find('\r'); at != std::string::npos;) {
            const std::size_t next = text.find('\r', at + 1);
            collect(i, text.substr(at + 1, next - at - 1));
            at = next;
        }
    }
    return misplaced;
}

bool StringsDocument::SetValue(std::size_t line, const std::string& value) {
    std::string& text = m_lines.at(line).text;
    const std::size_t equals = text.find('=');
    const std::string key = text.substr(0, equals);
    const std::size_t first = text.find('"', equals);
    const std::size_t last = text.rfind('"');

    // As it stands, and else with the quotes that are missing.
    std::string candidates[2];
    if (first == std::string::npos) {
        candidates[0] = key + '=' + value;
        candidates[1] = key + "=\"" + Escaped(value) + '"';
    } else {
        const std::string before = text.substr(0, first + 1) + Escaped(value);
        candidates[0] = first == last ? before : before + text.substr(last);
        candidates[1] = first == last ? before + '"' : candidates[0];
    }
    for (const std::string& candidate : candidates) {
        if (ReadsAs(candidate, m_lines[line].ending, key, value)) {
            text = candidate;
            return true;
        }
    }
    return false;
}
