#include <string>

#include <gtest/gtest.h>

#include "tests/tools/formats/Reports.h"
#include "tools/orva-strings/formats/Report.h"

namespace {

TEST(GitHubFormat, HasTheErrorsOfAllFilesFirstAndTheCountsLast) {
    Report report = OrdinaryReport();
    report.back().findings.push_back(
        {Rule::kNearHeader, Severity::kError, Place{120, 0}, "en", "", "a blank in front"});
    EXPECT_EQ(Written(WriteGitHub, report),
              "::error file=Sample.strings,title=missing-section::no section Suomi\n"
              "::error file=Sample.strings,line=1,col=1,title=placeholder::%25s, not %25d\n"
              "::error file=more/Other.strings,line=121,col=1,title=near-header::a blank in front\n"
              "::warning file=Sample.strings,line=12,col=5,title=missing-key::missing\n"
              "::warning file=more/Other.strings,line=100,col=13,title=empty-text::empty\n"
              "3 errors and 2 warnings in 3 files\n");
}

TEST(GitHubFormat, HasOnlyTheCountsWithoutFindings) {
    EXPECT_EQ(Written(WriteGitHub, {{"a", {}}, {"b", {}}}), "no findings in 2 files\n");
}

TEST(GitHubFormat, EscapesWhatWouldEndACommandOrAProperty) {
    const struct {
        std::string text;
        std::string property;
        std::string message;
    } cases[] = {
        {"a:b,c", "a%3Ab%2Cc", "a:b,c"},
        {"100 %", "100 %25", "100 %25"},
        {"%0A::error::", "%250A%3A%3Aerror%3A%3A", "%250A::error::"},
        {"a\nb\tc\r", "a\\nb\\tc\\x0D", "a\\nb\\tc\\x0D"},
        {"\x1b[31m \xC2\x9B", "\\x1B[31m \\xC2\\x9B", "\\x1B[31m \\xC2\\x9B"},
        {"\"a\" \\n", "\\\"a\\\" \\\\n", "\\\"a\\\" \\\\n"},
        {"Größe \xFF", "Größe \xFF", "Größe \xFF"},
    };
    for (const auto& [text, property, message] : cases) {
        EXPECT_EQ(Written(WriteGitHub, ReportOf(text)),
                  "::error file=" + property + ",line=1,col=2,title=placeholder::" + message +
                      "\n1 error in 1 file\n");
    }
}

}  // namespace
