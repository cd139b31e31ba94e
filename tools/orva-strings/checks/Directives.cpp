#include "tools/orva-strings/checks/Directives.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

namespace {

// The first word of a text, without the blanks before it. Removes both from the text.
std::string_view TakeWord(std::string_view& text) {
    text = TrimBlanks(text);
    const std::size_t length = std::min(text.find_first_of(" \t"), text.size());
    const std::string_view word = text.substr(0, length);
    text.remove_prefix(length);
    return word;
}

// What a comment says after "orva:", if it does.
std::optional<std::string_view> DirectiveText(std::string_view comment) {
    comment.remove_prefix(std::min(comment.find_first_not_of(" \t/#;*-"), comment.size()));
    constexpr std::string_view kMark = "orva:";
    if (comment.substr(0, kMark.size()) != kMark) {
        return std::nullopt;
    }
    comment = TrimBlanks(comment.substr(kMark.size()));
    if (comment.size() >= 2 && comment.substr(comment.size() - 2) == "*/") {
        comment.remove_suffix(2);
    }
    return TrimBlanks(comment);
}

std::optional<std::size_t> ReadNumber(std::string_view text) {
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number)
                                                                    : std::nullopt;
}

}  // namespace

void Directives::Read(const MeantReader& line, FindingCollector& findings) {
    if (line.Kind() == LineKind::kComment) {
        if (const auto text = DirectiveText(line.Text())) {
            if (line.Entry() && line.IsInSection()) {
                findings.Add(Rule::kBadDirective, line.Line(), line.Text(), {},
                             "this directive is an entry, too; write it without an equals sign");
            }
            ReadDirective(*text, line, findings);
            return;
        }
    }
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

void Directives::ReadDirective(std::string_view text, const MeantReader& line,
                               FindingCollector& findings) {
    const std::string_view name = TakeWord(text);
    if (name == "disable-next-line" && !TrimBlanks(text).empty()) {
        AddSilences(text, line.Line(), findings);
        return;
    }
    const std::optional<std::size_t> number = ReadNumber(TrimBlanks(text));
    if (name == "max-length" && number) {
        m_nextLimit = *number;
        m_limitLine = line.Line();
        return;
    }
    findings.Add(Rule::kBadDirective, line.Line(), name, {},
                 "this directive has no effect; write 'disable-next-line RULE' or 'max-length "
                 "NUMBER'");
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
                     "the next line is no entry whose length it could limit");
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
