#include "tools/orva-strings/checks/FindingCollector.h"

#include <algorithm>
#include <utf8cpp/utf8.h>

std::size_t CountCharacters(std::string_view text) {
    std::size_t count = 0;
    while (!text.empty()) {
        const std::size_t valid = std::min(utf8::find_invalid(text), text.size());
        count +=
            static_cast<std::size_t>(utf8::unchecked::distance(text.data(), text.data() + valid));
        text.remove_prefix(valid);
        const std::size_t invalid = text.empty() ? 0 : 1;
        count += invalid;
        text.remove_prefix(invalid);
    }
    return count;
}

void FindingCollector::AddForFile(Rule rule, const std::string& text, std::string_view section) {
    if (const auto severity = SeverityOf(rule)) {
        m_findings.push_back(
            {rule, *severity, std::nullopt, std::string(section), std::string(), text});
    }
}

void FindingCollector::Add(Rule rule, const StringsLine& line, std::string_view at,
                           std::string_view key, const std::string& text) {
    if (const auto severity = SeverityOf(rule)) {
        Add(rule, *severity, line, at, key, text);
    }
}

void FindingCollector::AddError(Rule rule, const StringsLine& line, std::string_view at,
                                std::string_view key, const std::string& text) {
    if (const auto severity = SeverityOf(rule)) {
        Add(rule, m_areChosen[static_cast<std::size_t>(rule)] ? *severity : Severity::kError, line,
            at, key, text);
    }
}

void FindingCollector::Add(Rule rule, Severity severity, const StringsLine& line,
                           std::string_view at, std::string_view key, const std::string& text) {
    const auto offset = static_cast<std::size_t>(at.data() - line.text.data());
    m_findings.push_back({rule, severity, Place{line.number, Column(line, offset)},
                          std::string(m_section), std::string(key),
                          key.empty() ? text : std::string(key) + ": " + text});
}

std::size_t FindingCollector::Column(const StringsLine& line, std::size_t offset) {
    if (m_line != line.number || m_offset > offset) {
        m_line = line.number;
        m_offset = 0;
        m_column = 0;
    }
    m_column += CountCharacters(line.text.substr(m_offset, offset - m_offset));
    m_offset = offset;
    return m_column;
}
