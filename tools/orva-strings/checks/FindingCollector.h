#ifndef ORVALANGUAGE_TOOLS_CHECKS_FINDINGCOLLECTOR_H
#define ORVALANGUAGE_TOOLS_CHECKS_FINDINGCOLLECTOR_H

#include <string>
#include <string_view>

#include "tools/orva-strings/checks/RuleFinding.h"
#include "tools/orva-strings/document/StringsReader.h"

// The number of characters in a text. A byte that is not part of UTF-8 counts as one.
std::size_t CountCharacters(std::string_view text);

// Collects the findings of the rules that are on.
class FindingCollector {
public:
    FindingCollector(const RuleSeverities& severities, const RuleFlags& areChosen)
        : m_severities(severities), m_areChosen(areChosen) {}

    bool IsOn(Rule rule) const { return SeverityOf(rule).has_value(); }

    // Says in which section the findings that follow are.
    void EnterSection(std::string_view name) { m_section = name; }
    std::string_view Section() const { return m_section; }

    // Adds a finding about the whole file, and a section if it names one.
    void AddForFile(Rule rule, const std::string& text, std::string_view section = {});

    // Adds a finding about a line, at the place where `at` begins in its text, and about the entry
    // of this key, if any.
    void Add(Rule rule, const StringsLine& line, std::string_view at, std::string_view key,
             const std::string& text);

    // Adds a finding that is an error, unless the severity of its rule was chosen.
    void AddError(Rule rule, const StringsLine& line, std::string_view at, std::string_view key,
                  const std::string& text);

    RuleFindings& Findings() { return m_findings; }

private:
    std::optional<Severity> SeverityOf(Rule rule) const {
        return m_severities[static_cast<std::size_t>(rule)];
    }

    void Add(Rule rule, Severity severity, const StringsLine& line, std::string_view at,
             std::string_view key, const std::string& text);

    // The number of characters in a line before a byte.
    std::size_t Column(const StringsLine& line, std::size_t offset);

    RuleSeverities m_severities;
    RuleFlags m_areChosen;
    std::string_view m_section;
    RuleFindings m_findings;
    // The place of the last finding: counting goes on from there.
    std::size_t m_line = 0;
    std::size_t m_offset = 0;
    std::size_t m_column = 0;
};

#endif
