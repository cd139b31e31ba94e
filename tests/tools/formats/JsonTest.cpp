#include <string>

#include <gtest/gtest.h>

#include "tests/tools/formats/Reports.h"
#include "tools/orva-strings/formats/Report.h"

namespace {

TEST(JsonFormat, HasTheFindingsAndTheCounts) {
    ExpectJson(WriteJson, OrdinaryReport(), R"({
  "version": 1,
  "findings": [
    {
      "file": "Sample.strings",
      "severity": "error",
      "rule": "missing-section",
      "section": "Suomi",
      "key": "",
      "message": "no section Suomi"
    },
    {
      "file": "Sample.strings",
      "line": 1,
      "column": 1,
      "severity": "error",
      "rule": "placeholder",
      "section": "Deutsch",
      "key": "FILES",
      "message": "%s, not %d"
    },
    {
      "file": "Sample.strings",
      "line": 12,
      "column": 5,
      "severity": "warning",
      "rule": "missing-key",
      "section": "Deutsch",
      "key": "MENU",
      "message": "missing"
    },
    {
      "file": "more/Other.strings",
      "line": 100,
      "column": 13,
      "severity": "warning",
      "rule": "empty-text",
      "section": "en",
      "key": "TITLE",
      "message": "empty"
    }
  ],
  "errors": 2,
  "warnings": 2,
  "files": 3
}
)");
}

TEST(JsonFormat, HasAnEmptyListWithoutFindings) {
    ExpectJson(WriteJson, {{"clean.strings", {}}}, R"({
  "version": 1,
  "findings": [],
  "errors": 0,
  "warnings": 0,
  "files": 1
}
)");
}

TEST(JsonFormat, IsAsciiAndShowsWhereBytesAreNotUtf8) {
    const struct {
        std::string text;
        std::string json;
    } cases[] = {
        {"\x1b[31m\x7F", R"("\u001b[31m\u007f")"},
        {"a\nb\tc\r", R"("a\nb\tc\r")"},
        {R"("a" \n)", R"("\"a\" \\n")"},
        {"\xC2\x9B", R"("\u009b")"},
        {"Größe, 100 %: 😀", R"("Gr\u00f6\u00dfe, 100 %: \ud83d\ude00")"},
        {"\xFF \xC3", R"("\ufffd \ufffd")"},
        {"\xED\xA0\x80", R"("\ufffd\ufffd\ufffd")"},  // a surrogate
        {std::string("a\0b", 3), R"("a\u0000b")"},
    };
    for (const auto& [text, json] : cases) {
        ExpectJson(WriteJson, ReportOf(text), R"({
  "version": 1,
  "findings": [
    {
      "file": )" + json + R"(,
      "line": 1,
      "column": 2,
      "severity": "error",
      "rule": "placeholder",
      "section": )" + json + R"(,
      "key": )" + json + R"(,
      "message": )" + json + R"(
    }
  ],
  "errors": 1,
  "warnings": 0,
  "files": 1
}
)");
    }
}

}  // namespace
