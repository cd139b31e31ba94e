#include "tools/orva-strings/document/StringsReader.h"

#include <OrvaLanguage/KorString.h>

#include "protection/ProtectedForm.h"
#include "strings/Line.h"

std::optional<StringsEntry> ReadEntry(std::string_view text, std::string& buffer) {
    const std::optional<LineEntry> parts = SplitEntry(text);
    if (!parts) {
        return std::nullopt;
    }
    StringsEntry entry = {parts->key, parts->value, "", ""};
    if (parts->isQuoted) {
        const auto end = [&](std::string_view part) {
            return static_cast<std::size_t>(part.data() + part.size() - text.data());
        };
        const std::size_t start = end(parts->key) + 1;
        entry.beforeQuote = text.substr(start, end(parts->value) - parts->value.size() - 1 - start);
        entry.afterQuote = text.substr(end(parts->value));
        entry.afterQuote.remove_prefix(entry.afterQuote.empty() ? 0 : 1);
        entry.value = Unescape(parts->value, buffer);
    }
    return entry;
}

bool IsProtectedEntry(std::string_view text) {
    const std::optional<LineEntry> entry = SplitEntry(text);
    return entry && IsProtectedKey(entry->key.data());
}

bool IsHeader(std::string_view text) {
    return IsHeader(text, KorString::LANG_STATEMENT, "");
}

bool StringsReader::Next() {
    if (m_rest.empty()) {
        m_line = {};
        m_isHeader = false;
        return false;
    }
    const std::string_view line = m_rest.substr(0, m_rest.find('\n'));
    const std::size_t length = TextLength(line);
    const std::size_t size = line.size() + (line.size() < m_rest.size() ? 1 : 0);
    m_line = {m_count++, m_rest.substr(0, length), m_rest.substr(length, size - length)};
    m_rest.remove_prefix(size);
    m_isHeader = ::IsHeader(m_line.text);
    m_isInSection = m_isInSection || m_isHeader;
    return true;
}

std::string_view StringsReader::SectionName() const {
    return m_line.text.substr(m_line.text.find('=') + 1);
}

std::optional<StringsEntry> StringsReader::Entry() {
    return m_isInSection && !m_isHeader ? ReadEntry(m_line.text, m_value) : std::nullopt;
}
