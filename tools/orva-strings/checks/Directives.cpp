#include "tools/orva-strings/checks/Directives.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

void Directives::Read(const MeantReader& line, FindingCollector& findings) {
    if (line.Kind() == LineKind::kComment) {
        if (const auto directive = ReadDirective(line.Text())) {
            if (line.Entry() && line.IsInSection()) {
                findings.Add(Rule::kBadDirective, line.Line(), line.Text(), {},
                             "this directive is an entry, too; write it without an equals sign");
            }
            Follow(*directive, line.Line(), findings);
            return;
        }
    }
    m_isBelowHeader = IsRightBelowHeader(line.Lines(), m_isBelowHeader);
    m_hasLanguage = m_hasLanguage && !line.Lines().IsHeader();
    for (; m_pending < m_silences.size(); ++m_pending) {
        m_silences[m_pending].line = line.Line().number;
    }
    if (m_nextLimit != kNoLimit && line.Entry()) {
        m_limits[line.Key()] = m_nextLimit;
    } else {
        CheckLimit(findings);
    }
    m_nextLimit = kNoLimit;
}

void Directives::Follow(const Directive& directive, const StringsLine& line,
                        FindingCollector& findings) {
    const auto [name, value] = directive;
    if (name == "disable-next-line" && !value.empty()) {
        AddSilences(value, line, findings);
        return;
    }
    if (name == kLanguageDirective && IsLanguageCode(value)) {
        CheckLanguage(directive, line, findings);
        return;
    }
    const std::optional<std::size_t> number = ReadNumber(value);
    if (name == kMaxLengthDirective && number) {
        m_nextLimit = *number;
        m_limitLine = line;
        return;
    }
    findings.Add(
        Rule::kBadDirective, line, name, {},
        "this directive has no effect; write 'disable-next-line RULE', 'max-length NUMBER' "
        "or 'language CODE'");
}

// As other commands take it. A section that hides another of its name may have its code.
void Directives::CheckLanguage(const Directive& directive, const StringsLine& line,
                               FindingCollector& findings) {
    const auto [name, code] = directive;
    if (!m_isBelowHeader) {
        findings.Add(Rule::kUnusedDirective, line, name, {},
                     "this is not right below the header of a section, whose language it could "
                     "say");
        return;
    }
    const std::string_view other = m_sections.emplace(code, findings.Section()).first->second;
    if (m_hasLanguage) {
        findings.Add(Rule::kBadDirective, line, name, {},
                     "this gives the section a second language code");
    } else if (!EqualWithoutCase()(other, findings.Section())) {
        findings.Add(Rule::kBadDirective, line, name, {},
                     "this gives the section a language code that " + std::string(other) + " has");
    }
    m_hasLanguage = true;
}

void Directives::AddSilences(std::string_view names, const StringsLine& line,
                             FindingCollector& findings) {
    for (std::string_view name = TakeWord(names); !name.empty(); name = TakeWord(names)) {
        if (const auto rule = FindRule(name)) {
            m_silences.push_back({line, findings.Section(), name, *rule, line.number, false});
        } else {
            findings.Add(Rule::kBadDirective, line, name, {},
                         "there is no rule " + std::string(name) + DidYouMeanRule(name));
        }
    }
}

std::size_t Directives::MaxLength(std::string_view key) const {
    const auto found = m_limits.empty() ? m_limits.end() : m_limits.find(key);
    return found != m_limits.end() ? found->second : kNoLimit;
}

void Directives::CheckLimit(FindingCollector& findings) const {
    if (m_nextLimit != kNoLimit) {
        findings.Add(Rule::kUnusedDirective, m_limitLine, m_limitLine.text, {},
                     "the next line is not an entry whose length it could limit");
    }
}

void Directives::Apply(FindingCollector& findings) {
    CheckLimit(findings);
    if (m_silences.empty()) {
        return;
    }
    const auto place = [](const Silence& silence) { return std::pair(silence.line, silence.rule); };
    std::stable_sort(m_silences.begin(), m_silences.end(),
                     [&](const Silence& a, const Silence& b) { return place(a) < place(b); });
    const auto isSilenced = [&](const RuleFinding& finding) {
        if (!finding.place) {
            return false;
        }
        const std::pair wanted(finding.place->line, finding.rule);
        const auto silence = std::lower_bound(
            m_silences.begin(), m_silences.end(), wanted,
            [&](const Silence& a, const auto& wantedPlace) { return place(a) < wantedPlace; });
        const bool isFound = silence != m_silences.end() && place(*silence) == wanted;
        if (isFound) {
            silence->isUsed = true;
        }
        return isFound;
    };
    auto& list = findings.Findings();
    list.erase(std::remove_if(list.begin(), list.end(), isSilenced), list.end());
    for (const Silence& silence : m_silences) {
        if (!silence.isUsed && findings.IsOn(silence.rule)) {
            findings.EnterSection(silence.section);
            findings.Add(Rule::kUnusedDirective, silence.directive, silence.name, {},
                         "the next line has no finding of the rule " + std::string(silence.name));
        }
    }
}
