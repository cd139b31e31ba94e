#include <cstddef>
#include <string>

#include <gtest/gtest.h>

#include "tests/tools/formats/Reports.h"
#include "tools/orva-strings/formats/Report.h"

namespace {

std::string Text(const Report& report, bool isColored = false) {
    return Written([=](const Report& r, std::ostream& out) { WriteText(r, isColored, out); },
                   report);
}

// A report on files, the first of which has these findings.
Report WithCounts(std::size_t errors, std::size_t warnings, std::size_t files) {
    Report report(files, {"file", {}});
    for (std::size_t i = 0; i < errors + warnings; ++i) {
        const Severity severity = i < errors ? Severity::kError : Severity::kWarning;
        report.front().findings.push_back({Rule::kPlaceholder, severity, {}, "", "", ""});
    }
    return report;
}

std::string LastLine(const std::string& text) {
    return text.substr(text.rfind('\n', text.size() - 2) + 1);
}

TEST(TextFormat, IsALineForEachFindingAndOneWithTheCounts) {
    EXPECT_EQ(Text(OrdinaryReport()),
              "Sample.strings: error: no section Suomi [missing-section]\n"
              "Sample.strings:1:1: error: %s, not %d [placeholder]\n"
              "Sample.strings:12:5: warning: missing [missing-key]\n"
              "more/Other.strings:100:13: warning: empty [empty-text]\n"
              "2 errors and 2 warnings in 3 files\n");
}

TEST(TextFormat, ColorsSeverityAndRuleOnly) {
    EXPECT_EQ(Text(OrdinaryReport(), true),
              "Sample.strings: \x1b[1;31merror\x1b[0m: no section Suomi "
              "[\x1b[36mmissing-section\x1b[0m]\n"
              "Sample.strings:1:1: \x1b[1;31merror\x1b[0m: %s, not %d "
              "[\x1b[36mplaceholder\x1b[0m]\n"
              "Sample.strings:12:5: \x1b[1;33mwarning\x1b[0m: missing "
              "[\x1b[36mmissing-key\x1b[0m]\n"
              "more/Other.strings:100:13: \x1b[1;33mwarning\x1b[0m: empty "
              "[\x1b[36mempty-text\x1b[0m]\n"
              "2 errors and 2 warnings in 3 files\n");
}

TEST(TextFormat, EscapesNamesAndTexts) {
    const struct {
        std::string text;
        std::string shown;
    } cases[] = {
        {"\x1b[31m", "\\x1B[31m"},           {"a\nb\tc\r", "a\\nb\\tc\\x0D"},
        {"\"a\" \\n", "\\\"a\\\" \\\\n"},    {"\xC2\x9B", "\\xC2\\x9B"},
        {"\xFF \xC3", "\xFF \xC3"},          {"Größe, 100 %: é", "Größe, 100 %: é"},
        {std::string("a\0b", 3), "a\\x00b"},
    };
    for (const auto& [text, shown] : cases) {
        EXPECT_EQ(Text(ReportOf(text)),
                  shown + ":1:2: error: " + shown + " [placeholder]\n1 error in 1 file\n");
    }
}

TEST(TextFormat, CountsInPlainEnglish) {
    const struct {
        std::size_t errors;
        std::size_t warnings;
        std::size_t files;
        const char* line;
    } cases[] = {
        {0, 0, 0, "no findings in 0 files\n"},
        {0, 0, 1, "no findings in 1 file\n"},
        {0, 0, 2, "no findings in 2 files\n"},
        {1, 0, 1, "1 error in 1 file\n"},
        {2, 0, 1, "2 errors in 1 file\n"},
        {0, 1, 2, "1 warning in 2 files\n"},
        {0, 2, 1, "2 warnings in 1 file\n"},
        {1, 1, 1, "1 error and 1 warning in 1 file\n"},
        {3, 1, 2, "3 errors and 1 warning in 2 files\n"},
        {1, 12, 30, "1 error and 12 warnings in 30 files\n"},
    };
    for (const auto& [errors, warnings, files, line] : cases) {
        EXPECT_EQ(LastLine(Text(WithCounts(errors, warnings, files))), line);
    }
}

}  // namespace
