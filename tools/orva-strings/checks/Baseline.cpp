#include "tools/orva-strings/checks/Baseline.h"

#include <algorithm>
#include <stdexcept>

#include "tools/orva-strings/cli/Printable.h"
#include "tools/orva-strings/document/StringsReader.h"

namespace {

constexpr std::string_view kHeading = "orva-strings baseline, version 1: rule, section, key";

std::string LineOf(const RuleFinding& finding) {
    return TextOf(finding.rule).name + ('\t' + Printable(finding.section)) + '\t' +
           Printable(finding.key);
}

}  // namespace

bool Baseline::IsBaseline(std::string_view text) {
    StringsReader lines(text);
    return lines.Next() && lines.Line().text == kHeading;
}

Baseline::Baseline(std::string_view text, const std::string& name) {
    if (!IsBaseline(text)) {
        throw std::runtime_error(name + ": this is not a baseline");
    }
    StringsReader lines(text);
    lines.Next();
    while (lines.Next()) {
        ++m_counts[std::string(lines.Line().text)];
    }
}

void Baseline::Add(const RuleFindings& findings) {
    for (const RuleFinding& finding : findings) {
        ++m_counts[LineOf(finding)];
    }
}

void Baseline::RemoveKnown(RuleFindings& findings) {
    const auto isKnown = [&](const RuleFinding& finding) {
        const auto found = m_counts.find(LineOf(finding));
        if (found == m_counts.end() || found->second == 0) {
            return false;
        }
        --found->second;
        return true;
    };
    findings.erase(std::remove_if(findings.begin(), findings.end(), isKnown), findings.end());
}

std::string Baseline::Text() const {
    std::string text(kHeading);
    text += '\n';
    for (const auto& [line, count] : m_counts) {
        for (std::size_t i = 0; i < count; ++i) {
            text += line;
            text += '\n';
        }
    }
    return text;
}
