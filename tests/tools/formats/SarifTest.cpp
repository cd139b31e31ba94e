#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/tools/formats/Reports.h"
#include "tools/orva-strings/formats/Report.h"

namespace {

using nlohmann::ordered_json;

// What the report says after its version.
ordered_json RunOf(const Report& report) {
    return ordered_json::parse(Written(WriteSarif, report)).at("runs").at(0);
}

// The rule as it must be written. Its texts, which are those of the table, must hold no braces.
std::string Descriptor(Rule rule, const std::string& level) {
    const auto quoted = [](const char* text) { return ordered_json(text).dump(-1, ' ', true); };
    const RuleText& text = TextOf(rule);
    return R"(            {
              "id": )" +
           quoted(text.name) + R"(,
              "shortDescription": {
                "text": )" +
           quoted(text.summary) + R"(
              },
              "fullDescription": {
                "text": )" +
           quoted(text.explanation) + R"(
              },
              "help": {
                "text": )" +
           quoted(text.explanation) + R"(
              },
              "defaultConfiguration": {
                "enabled": true,
                "level": ")" +
           level + R"("
              }
            })";
}

TEST(SarifFormat, HasTheRulesAndTheFindings) {
    Report report = OrdinaryReport();
    report.front().findings.erase(report.front().findings.begin() + 1);
    const std::string rules = Descriptor(Rule::kMissingSection, "error") + ",\n" +
                              Descriptor(Rule::kMissingKey, "warning") + ",\n" +
                              Descriptor(Rule::kEmptyText, "warning");
    ExpectJson(WriteSarif, report, R"({
  "$schema": "https://docs.oasis-open.org/sarif/sarif/v2.1.0/os/schemas/sarif-schema-2.1.0.json",
  "version": "2.1.0",
  "runs": [
    {
      "tool": {
        "driver": {
          "name": "orva-strings",
          "version": ")" ORVA_VERSION R"(",
          "rules": [
)" + rules + R"(
          ]
        }
      },
      "columnKind": "unicodeCodePoints",
      "results": [
        {
          "ruleId": "missing-section",
          "ruleIndex": 0,
          "level": "error",
          "message": {
            "text": "no section Suomi"
          },
          "locations": [
            {
              "physicalLocation": {
                "artifactLocation": {
                  "uri": "Sample.strings"
                }
              }
            }
          ],
          "partialFingerprints": {
            "ruleSectionKey/v1": "missing-section\nSuomi\n\n1"
          }
        },
        {
          "ruleId": "missing-key",
          "ruleIndex": 1,
          "level": "warning",
          "message": {
            "text": "missing"
          },
          "locations": [
            {
              "physicalLocation": {
                "artifactLocation": {
                  "uri": "Sample.strings"
                },
                "region": {
                  "startLine": 12,
                  "startColumn": 5
                }
              }
            }
          ],
          "partialFingerprints": {
            "ruleSectionKey/v1": "missing-key\nDeutsch\nMENU\n1"
          }
        },
        {
          "ruleId": "empty-text",
          "ruleIndex": 2,
          "level": "warning",
          "message": {
            "text": "empty"
          },
          "locations": [
            {
              "physicalLocation": {
                "artifactLocation": {
                  "uri": "more/Other.strings"
                },
                "region": {
                  "startLine": 100,
                  "startColumn": 13
                }
              }
            }
          ],
          "partialFingerprints": {
            "ruleSectionKey/v1": "empty-text\nen\nTITLE\n1"
          }
        }
      ]
    }
  ]
}
)");
}

TEST(SarifFormat, HasEmptyListsWithoutFindings) {
    ExpectJson(WriteSarif, {{"clean.strings", {}}}, R"({
  "$schema": "https://docs.oasis-open.org/sarif/sarif/v2.1.0/os/schemas/sarif-schema-2.1.0.json",
  "version": "2.1.0",
  "runs": [
    {
      "tool": {
        "driver": {
          "name": "orva-strings",
          "version": ")" ORVA_VERSION R"(",
          "rules": []
        }
      },
      "columnKind": "unicodeCodePoints",
      "results": []
    }
  ]
}
)");
}

TEST(SarifFormat, HasEachRuleOnce) {
    const ordered_json run = RunOf({{"a",
                                     {{Rule::kStale, Severity::kError, {}, "", "", ""},
                                      {Rule::kPlaceholder, Severity::kWarning, {}, "", "", ""}}},
                                    {"b", {{Rule::kStale, Severity::kWarning, {}, "", "", ""}}}});
    std::vector<std::string> rules;
    for (const ordered_json& rule : run.at("tool").at("driver").at("rules")) {
        rules.push_back(rule.at("id"));
    }
    EXPECT_EQ(rules, (std::vector<std::string>{"stale", "placeholder"}));
    std::vector<std::pair<std::size_t, std::string>> results;
    for (const ordered_json& result : run.at("results")) {
        results.emplace_back(result.at("ruleIndex"), result.at("level"));
    }
    EXPECT_EQ(results, (std::vector<std::pair<std::size_t, std::string>>{
                           {0, "error"}, {1, "warning"}, {0, "warning"}}));
}

TEST(SarifFormat, SaysThatARuleIsOffUnlessAskedFor) {
    const ordered_json run =
        RunOf({{"a", {{Rule::kEndPunctuation, Severity::kError, {}, "", "", ""}}}});
    EXPECT_EQ(run.at("tool").at("driver").at("rules").at(0).at("defaultConfiguration").dump(),
              R"({"enabled":false})");
    EXPECT_EQ(run.at("results").at(0).at("level"), "error");
}

TEST(SarifFormat, NamesAFileByAUri) {
    const struct {
        const char* file;
        const char* uri;
    } cases[] = {
        {"Sample.strings", "Sample.strings"},
        {"./Sample.strings", "Sample.strings"},
        {"a//b/./c", "a/b/c"},
        {"../other/x", "../other/x"},
        {"/usr/share/a b", "file:///usr/share/a%20b"},
        {"100%, a:b?#[c]", "100%25%2C%20a%3Ab%3F%23%5Bc%5D"},
        {"A-Z_a-z.0~9", "A-Z_a-z.0~9"},
        {"Größe", "Gr%C3%B6%C3%9Fe"},
        {"\xFF\n\"\\", "%FF%0A%22%5C"},
        {"-", "stdin"},
        {"./-", "-"},
    };
    for (const auto& [file, uri] : cases) {
        const ordered_json run =
            RunOf({{file, {{Rule::kNoSection, Severity::kError, {}, "", "", ""}}}});
        EXPECT_EQ(run.at("results").at(0).at("locations").at(0).at("physicalLocation").dump(),
                  R"({"artifactLocation":{"uri":")" + std::string(uri) + R"("}})");
    }
}

TEST(SarifFormat, DoublesBracesInMessages) {
    const ordered_json run = RunOf(
        {{"a", {{Rule::kPlaceholder, Severity::kError, {}, "", "", "{name} is not in {0}"}}}});
    EXPECT_EQ(run.at("results").at(0).at("message").at("text"), "{{name}} is not in {{0}}");
    const std::string help = run.at("tool").at("driver").at("rules").at(0).at("help").at("text");
    EXPECT_NE(help.find("{{0}} and {{name}}"), std::string::npos) << help;
}

TEST(SarifFormat, KeepsAFingerprintWhenTheLineMoves) {
    const auto fingerprintsAt = [](std::size_t line) {
        const RuleFinding finding = {
            Rule::kPlaceholder, Severity::kError, Place{line, line}, "de", "FILES", "text"};
        RuleFinding other = finding;
        other.key = "MENU";
        const ordered_json run = RunOf({{"a", {finding, other, finding}}, {"b", {finding}}});
        std::vector<std::string> fingerprints;
        for (const ordered_json& result : run.at("results")) {
            fingerprints.push_back(result.at("partialFingerprints").at("ruleSectionKey/v1"));
        }
        return fingerprints;
    };
    const std::vector<std::string> fingerprints = {
        "placeholder\nde\nFILES\n1", "placeholder\nde\nMENU\n1", "placeholder\nde\nFILES\n2",
        "placeholder\nde\nFILES\n1"};
    EXPECT_EQ(fingerprintsAt(0), fingerprints);
    EXPECT_EQ(fingerprintsAt(7), fingerprints);
}

TEST(SarifFormat, IsAsciiAndShowsWhereBytesAreNotUtf8) {
    const std::string text = Written(WriteSarif, ReportOf("\x1b \xC2\x9B ö \xFF \"\n"));
    EXPECT_NE(text.find(R"("text":"\u001b \u009b \u00f6 \ufffd \"\n")"), std::string::npos) << text;
    for (const char c : text) {
        EXPECT_TRUE(c == '\n' || (c >= ' ' && c <= '~')) << text;
    }
}

}  // namespace
