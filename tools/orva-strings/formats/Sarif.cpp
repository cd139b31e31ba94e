#include <algorithm>
#include <array>
#include <cstddef>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <OrvaLanguage/Version.h>

#include "tools/orva-strings/cli/Json.h"
#include "tools/orva-strings/formats/Counts.h"
#include "tools/orva-strings/formats/Percent.h"
#include "tools/orva-strings/formats/Report.h"

namespace {

constexpr std::string_view kUnescaped =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";

// A message object. Its braces are doubled, since single ones would mark a place for an argument.
std::string Message(std::string_view text) {
    std::string message;
    for (const char c : text) {
        message.append(c == '{' || c == '}' ? 2 : 1, c);
    }
    return "{\"text\":" + JsonText(message) + '}';
}

// A reference to a file, relative unless its name is absolute.
std::string Uri(const std::string& file) {
    if (file == "-") {
        return "stdin";  // "-" would name a file
    }
    // Without ./ in front, as the repository names its files.
    const std::string path = std::filesystem::path(file).lexically_normal();
    const auto needsEscape = [](char c) { return kUnescaped.find(c) == std::string_view::npos; };
    return (path.substr(0, 1) == "/" ? "file://" : "") + PercentEncoded(path, needsEscape);
}

// The rules that have findings, in the order of their first.
std::vector<Rule> RulesIn(const Report& report) {
    std::vector<Rule> rules;
    std::array<bool, kAllRuleCount> isListed = {};
    for (const FileReport& file : report) {
        for (const RuleFinding& finding : file.findings) {
            bool& isKnown = isListed[static_cast<std::size_t>(finding.rule)];
            if (!isKnown) {
                rules.push_back(finding.rule);
            }
            isKnown = true;
        }
    }
    return rules;
}

// Code scanning needs both the description and the help.
void WriteRule(const RuleText& rule, std::ostream& out) {
    const std::string explanation = Message(rule.explanation);
    out << "{\"id\":" << JsonText(rule.name) << ",\"shortDescription\":" << Message(rule.summary)
        << ",\"fullDescription\":" << explanation << ",\"help\":" << explanation
        << ",\"defaultConfiguration\":{\"enabled\":" << (rule.severity ? "true" : "false");
    if (rule.severity) {
        out << ",\"level\":\"" << NameOf(*rule.severity) << '"';
    }
    out << "}}";
}

// Writes one result. What it is about does not include its line, so that it stays the same one when
// lines are added above it. No name or key holds a line feed. GitHub's upload adds a hash of its own,
// primaryLocationLineHash, and would warn of each that it finds in its place.
void WriteResult(const RuleFinding& finding, std::ptrdiff_t ruleIndex, const std::string& uri,
                 const std::string& about, std::ostream& out) {
    out << "{\"ruleId\":" << JsonText(TextOf(finding.rule).name) << ",\"ruleIndex\":" << ruleIndex
        << ",\"level\":\"" << NameOf(finding.severity) << "\",\"message\":" << Message(finding.text)
        << ",\"locations\":[{\"physicalLocation\":{\"artifactLocation\":{\"uri\":" << JsonText(uri)
        << '}';
    if (finding.place) {
        out << ",\"region\":{\"startLine\":" << finding.place->line + 1
            << ",\"startColumn\":" << finding.place->column + 1 << '}';
    }
    out << "}}],\"partialFingerprints\":{\"ruleSectionKey/v1\":" << JsonText(about) << "}}";
}

}  // namespace

// Line by line: a whole document would take many times the memory of its findings.
void WriteSarif(const Report& report, std::ostream& out) {
    out << "{\"$schema\":\"https://docs.oasis-open.org/sarif/sarif/v2.1.0/os/schemas/"
           "sarif-schema-2.1.0.json\",\n"
           "\"version\":\"2.1.0\",\n"
           "\"runs\":[{\"tool\":{\"driver\":{\"name\":\"orva-strings\",\"version\":"
           "\"" ORVA_VERSION_STRING "\",\"rules\":[";
    const std::vector<Rule> rules = RulesIn(report);
    const char* separator = "\n";
    for (const Rule rule : rules) {
        out << separator;
        WriteRule(TextOf(rule), out);
        separator = ",\n";
    }
    out << "]}},\n\"columnKind\":\"unicodeCodePoints\",\"results\":[";
    separator = "\n";
    for (const FileReport& file : report) {
        const std::string uri = Uri(file.file);
        std::map<std::string, std::size_t> counts;
        for (const RuleFinding& finding : file.findings) {
            std::string about = TextOf(finding.rule).name;
            about += '\n' + finding.section + '\n' + finding.key;
            const std::size_t count = ++counts[about];
            out << separator;
            WriteResult(finding,
                        std::find(rules.begin(), rules.end(), finding.rule) - rules.begin(), uri,
                        about + '\n' + std::to_string(count), out);
            separator = ",\n";
        }
    }
    out << "]}]}\n";
}
