#include "tools/orva-strings/checks/SectionKeys.h"

#include <algorithm>
#include <string>

#include "tools/orva-strings/Ascii.h"

std::size_t HashWithoutCase::operator()(std::string_view key) const {
    std::size_t hash = 14695981039346656037U;  // FNV-1a
    for (const char c : key) {
        hash = (hash ^ static_cast<unsigned char>(ToLower(c))) * 1099511628211U;
    }
    return hash;
}

bool EqualWithoutCase::operator()(std::string_view a, std::string_view b) const {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return ToLower(x) == ToLower(y); });
}

void SectionKeys::Clear() {
    m_entries.clear();
    m_spellings.clear();
}

bool SectionKeys::Check(const MeantReader& line, FindingCollector& findings) {
    const std::string_view key = line.Entry()->key;
    const auto [found, isFirst] =
        m_entries.try_emplace(key, Entry{*line.Entry(), line.Line().number});
    if (!isFirst) {
        const Entry& first = found->second;
        std::string buffer;
        std::string firstBuffer;
        const std::string where = "line " + std::to_string(first.line + 1);
        if (ValueOf(*line.Entry(), buffer) == ValueOf(first.entry, firstBuffer)) {
            findings.Add(Rule::kDuplicateEntry, line.Line(), key, line.Key(),
                         where + " has the same entry; remove one of them");
        } else {
            findings.Add(Rule::kDuplicateKey, line.Line(), key, line.Key(),
                         "lookups answer the text of " + where +
                             ", which has this key, too; remove one of them, or rename its key");
        }
        return false;
    }
    const auto [spelling, isNew] = m_spellings.try_emplace(key, key);
    if (!isNew) {
        findings.Add(Rule::kKeyCase, line.Line(), key, line.Key(),
                     "the key differs from " + std::string(spelling->second) + " on line " +
                         std::to_string(m_entries.find(spelling->second)->second.line + 1) +
                         " only by case; they are two entries");
    }
    return true;
}
