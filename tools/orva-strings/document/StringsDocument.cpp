#include "tools/orva-strings/document/StringsDocument.h"

#include <algorithm>
#include <optional>
#include <utility>

#include <OrvaLanguage/KorString.h>

#include "protection/ProtectedForm.h"
#include "strings/Line.h"

namespace {

// Splits a line into text and ending, which is its line feed, if any, and what precedes that.
std::pair<std::string, std::string> SplitEnding(std::string_view bytes) {
    const std::size_t length = TextLength(bytes.substr(0, bytes.find('\n')));
    return {std::string(bytes.substr(0, length)), std::string(bytes.substr(length))};
}

// Whether this text and ending make one line, which reads as an entry of this key and value.
bool ReadsAs(const std::string& text, const std::string& ending, const std::string& key,
             const std::string& value) {
    std::string keyRead;
    std::string valueRead;
    return text.find('\n') == std::string::npos && SplitEnding(text + ending).first == text &&
           KorString::GetLocalizedElement(text, &keyRead, &valueRead) && keyRead == key &&
           valueRead == value;
}

std::optional<StringsDocument::Entry> ReadEntry(std::size_t line, const std::string& text) {
    StringsDocument::Entry entry = {line, "", "", "", ""};
    if (!KorString::GetLocalizedElement(text, &entry.key, &entry.value)) {
        return std::nullopt;
    }
    const std::size_t start = entry.key.size() + 1;
    const std::size_t quote = text.find('"', start);
    if (quote != std::string::npos) {
        entry.beforeQuote = text.substr(start, quote - start);
        const std::size_t last = text.rfind('"');
        entry.afterQuote = last == quote ? "" : text.substr(last + 1);
    }
    return entry;
}

bool IsHeader(const std::string& text) {
    return KorString::SearchLanguageKey(text, "");
}

bool IsProtectedEntry(const std::string& text) {
    return IsProtectedKey(text.c_str()) && ReadEntry(0, text).has_value();
}

std::string WithoutByteOrderMarks(const std::string& text) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    std::size_t start = 0;
    while (text.compare(start, kByteOrderMark.size(), kByteOrderMark) == 0) {
        start += kByteOrderMark.size();
    }
    return text.substr(start);
}

bool IsLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// Whether a byte ends the blanks and comment marks before a key. A carriage return does, since what
// follows it is a separate piece.
bool CanBeginKey(char c) {
    return IsLetter(c) || (c >= '0' && c <= '9') || c == '_' || c == '\r';
}

// Whether a key was probably meant as a protected one.
bool IsNearProtectedKey(std::string_view key) {
    const auto isLetterOfIde = [&](std::size_t i) { return (key[i] | 0x20) == "ide"[i]; };
    if (key.size() < 3 || !isLetterOfIde(0) || !isLetterOfIde(1) || !isLetterOfIde(2) ||
        key.find_first_of(" \t") != std::string_view::npos) {
        return false;
    }
    // "Ideal" is a different word.
    return key.substr(0, 3) == "IDE" || key.size() == 3 || !IsLetter(key[3]);
}

// The key and value of a line that was probably meant as a protected entry, without what precedes
// its key.
std::optional<StringsDocument::Entry> ReadNearProtected(std::size_t line, std::string_view text) {
    while (!text.empty() && !CanBeginKey(text.front())) {
        text.remove_prefix(1);
    }
    // A colon or blanks before a quote may be meant as the equals sign.
    const std::size_t quote = text.find('"');
    std::size_t separator = std::min(text.find('='), text.find_first_of(": \t"));
    const std::string_view key = text.substr(0, separator);
    separator = text.find_first_not_of(": \t", std::min(separator, text.size()));
    const bool hasEquals = separator != std::string_view::npos && text[separator] == '=';
    if (!IsNearProtectedKey(key) || (!hasEquals && separator != quote) ||
        separator == std::string_view::npos) {
        return std::nullopt;
    }
    // Read with a key that is long enough, as this one may be too short.
    std::optional<StringsDocument::Entry> entry =
        ReadEntry(line, "IDE_=" + std::string(text.substr(separator + (hasEquals ? 1 : 0))));
    entry->key = key;
    return entry;
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

std::set<std::string> StringsDocument::Section::Keys() const {
    std::set<std::string> keys = {"QVLANG"};
    for (const Entry& entry : entries) {
        keys.insert(entry.key);
    }
    return keys;
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
    for (std::size_t i = 0; i < m_lines.size(); ++i) {
        const std::string& text = m_lines[i].text;
        if (IsHeader(text)) {
            sections.push_back({i, text.substr(text.find('=') + 1), {}});
        } else if (!sections.empty()) {
            if (std::optional<Entry> entry = ReadEntry(i, text)) {
                sections.back().entries.push_back(std::move(*entry));
            }
        }
    }
    return sections;
}

template <typename Visit>
void StringsDocument::ForEachPiece(const Visit& visit) const {
    for (std::size_t i = 0; i < m_lines.size(); ++i) {
        const std::string& text = m_lines[i].text;
        visit(i, text, true);
        for (std::size_t at = text.find('\r'); at != std::string::npos;) {
            const std::size_t next = text.find('\r', at + 1);
            visit(i, text.substr(at + 1, next - at - 1), false);
            at = next;
        }
    }
}

std::vector<StringsDocument::Misplaced> StringsDocument::MisplacedLines() const {
    std::vector<Misplaced> misplaced;
    bool isInSection = false;
    ForEachPiece([&](std::size_t line, const std::string& piece, bool isWholeLine) {
        const std::string text = WithoutByteOrderMarks(piece);
        if (!IsHeader(text) && !IsProtectedEntry(text)) {
            return;
        }
        const std::string key = text.substr(0, text.find('='));
        if (text.size() != piece.size()) {
            misplaced.push_back({line, key, Obstacle::kByteOrderMark});
        } else if (!isWholeLine) {
            misplaced.push_back({line, key, Obstacle::kCarriageReturn});
        } else if (IsHeader(text)) {
            isInSection = true;
        } else if (!isInSection) {
            misplaced.push_back({line, key, Obstacle::kNoSectionYet});
        }
    });
    return misplaced;
}

std::vector<StringsDocument::Entry> StringsDocument::NearProtected() const {
    std::vector<Entry> near;
    ForEachPiece([&](std::size_t line, const std::string& piece, bool /*isWholeLine*/) {
        if (IsProtectedEntry(WithoutByteOrderMarks(piece))) {
            return;
        }
        if (std::optional<Entry> entry = ReadNearProtected(line, piece)) {
            near.push_back(std::move(*entry));
        }
    });
    return near;
}

bool StringsDocument::SetValue(std::size_t line, const std::string& value) {
    std::string& text = m_lines.at(line).text;
    const std::size_t equals = text.find('=');
    const std::string key = text.substr(0, equals);
    const std::size_t first = text.find('"', equals);
    const std::size_t last = text.rfind('"');

    // First with the existing quotes, then with the missing ones added.
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
