// Reports for the tests of the formats.
#ifndef ORVALANGUAGE_TESTS_TOOLS_FORMATS_REPORTS_H
#define ORVALANGUAGE_TESTS_TOOLS_FORMATS_REPORTS_H

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "tools/orva-strings/formats/Report.h"

// An error about a whole file, an error and a warning in it; a file without findings; a warning in a
// third.
inline Report OrdinaryReport() {
    return {{"Sample.strings",
             {{Rule::kMissingSection, Severity::kError, {}, "Suomi", "", "no section Suomi"},
              {Rule::kPlaceholder, Severity::kError, Place{0, 0}, "Deutsch", "FILES", "%s, not %d"},
              {Rule::kMissingKey, Severity::kWarning, Place{11, 4}, "Deutsch", "MENU", "missing"}}},
            {"clean.strings", {}},
            {"more/Other.strings",
             {{Rule::kEmptyText, Severity::kWarning, Place{99, 12}, "en", "TITLE", "empty"}}}};
}

// One finding whose file, section, key and text are all this.
inline Report ReportOf(const std::string& text) {
    return {{text, {{Rule::kPlaceholder, Severity::kError, Place{0, 1}, text, text, text}}}};
}

template <typename Write>
std::string Written(Write write, const Report& report) {
    std::ostringstream out;
    write(report, out);
    return out.str();
}

// Expects a report to be this document, with its members in this order, in ASCII lines.
template <typename Write>
void ExpectJson(Write write, const Report& report, const std::string& expected) {
    const std::string written = Written(write, report);
    EXPECT_EQ(nlohmann::ordered_json::parse(written), nlohmann::ordered_json::parse(expected));
    EXPECT_EQ(written.back(), '\n');
    EXPECT_TRUE(std::all_of(written.begin(), written.end(),
                            [](char c) { return (c >= ' ' && c <= '~') || c == '\n'; }));
}

#endif
