#include <cstddef>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <utility>

#include "tools/orva-strings/formats/Counts.h"
#include "tools/orva-strings/formats/JsonText.h"
#include "tools/orva-strings/formats/Percent.h"
#include "tools/orva-strings/formats/Report.h"

using nlohmann::ordered_json;

namespace {

constexpr std::string_view kUnescaped =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";

// A message object. Its braces are doubled, since single ones would mark a place for an argument.
ordered_json Message(std::string_view text) {
    std::string message;
    for (const char c : text) {
        message.append(c == '{' || c == '}' ? 2 : 1, c);
    }
    return {{"text", std::move(message)}};
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

ordered_json Location(const std::string& uri, const RuleFinding& finding) {
    ordered_json physical = {{"artifactLocation", {{"uri", uri}}}};
    if (finding.place) {
        physical["region"] = {{"startLine", finding.place->line + 1},
                              {"startColumn", finding.place->column + 1}};
    }
    return {{"physicalLocation", std::move(physical)}};
}

ordered_json RuleDescriptor(const RuleText& rule) {
    ordered_json configuration = {{"enabled", rule.severity.has_value()}};
    if (rule.severity) {
        configuration["level"] = NameOf(*rule.severity);
    }
    // Code scanning needs both the description and the help.
    return {{"id", rule.name},
            {"shortDescription", Message(rule.summary)},
            {"fullDescription", Message(rule.explanation)},
            {"help", Message(rule.explanation)},
            {"defaultConfiguration", std::move(configuration)}};
}

// The results of a report, and the rules that they refer to.
class Results {
public:
    void Add(const FileReport& file) {
        const std::string uri = Uri(file.file);
        std::map<std::string, std::size_t> counts;
        for (const RuleFinding& finding : file.findings) {
            const std::string name = TextOf(finding.rule).name;
            // What a finding is about, without its line, so that it stays the same one when lines
            // are added above it. No name or key holds a line feed. GitHub's upload adds a hash of
            // its own, primaryLocationLineHash, and would warn of each that it finds in its place.
            const std::string about = name + '\n' + finding.section + '\n' + finding.key;
            const std::size_t count = ++counts[about];
            ordered_json result = {{"ruleId", name}};
            result["ruleIndex"] = IndexOf(finding.rule);
            result["level"] = NameOf(finding.severity);
            result["message"] = Message(finding.text);
            result["locations"] = ordered_json::array({Location(uri, finding)});
            result["partialFingerprints"]["ruleSectionKey/v1"] =
                about + '\n' + std::to_string(count);
            m_results.push_back(std::move(result));
        }
    }

    ordered_json TakeRules() { return std::move(m_rules); }
    ordered_json TakeResults() { return std::move(m_results); }

private:
    std::size_t IndexOf(Rule rule) {
        const auto [position, isNew] = m_indices.emplace(rule, m_indices.size());
        if (isNew) {
            m_rules.push_back(RuleDescriptor(TextOf(rule)));
        }
        return position->second;
    }

    std::map<Rule, std::size_t> m_indices;
    ordered_json m_rules = ordered_json::array();
    ordered_json m_results = ordered_json::array();
};

}  // namespace

void WriteSarif(const Report& report, std::ostream& out) {
    Results results;
    for (const FileReport& file : report) {
        results.Add(file);
    }
    ordered_json driver = {
        {"name", "orva-strings"}, {"version", ORVA_VERSION}, {"rules", results.TakeRules()}};
    ordered_json run = {{"tool", {{"driver", std::move(driver)}}},
                        {"columnKind", "unicodeCodePoints"},
                        {"results", results.TakeResults()}};
    WriteJsonText({{"$schema",
                    "https://docs.oasis-open.org/sarif/sarif/v2.1.0/os/schemas/"
                    "sarif-schema-2.1.0.json"},
                   {"version", "2.1.0"},
                   {"runs", ordered_json::array({std::move(run)})}},
                  out);
}
