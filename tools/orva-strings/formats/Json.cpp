#include <nlohmann/json.hpp>
#include <utility>

#include "tools/orva-strings/formats/Counts.h"
#include "tools/orva-strings/formats/JsonText.h"
#include "tools/orva-strings/formats/Report.h"

using nlohmann::ordered_json;

void WriteJsonText(const ordered_json& document, std::ostream& out) {
    constexpr int kIndent = 2;
    // All but ASCII is escaped, so that no control character, U+009B for one, can drive a terminal.
    constexpr bool kIsAscii = true;
    // JSON can't hold bytes that are not UTF-8: U+FFFD shows where they were.
    out << document.dump(kIndent, ' ', kIsAscii, ordered_json::error_handler_t::replace) << '\n';
}

void WriteJson(const Report& report, std::ostream& out) {
    ordered_json findings = ordered_json::array();
    for (const FileReport& file : report) {
        for (const RuleFinding& finding : file.findings) {
            ordered_json json = {{"file", file.file}};
            if (finding.place) {
                json["line"] = finding.place->line + 1;
                json["column"] = finding.place->column + 1;
            }
            json["severity"] = NameOf(finding.severity);
            json["rule"] = TextOf(finding.rule).name;
            json["section"] = finding.section;
            json["key"] = finding.key;
            json["message"] = finding.text;
            findings.push_back(std::move(json));
        }
    }
    const Counts counts = CountsIn(report);
    ordered_json document = {{"version", 1}};
    document["findings"] = std::move(findings);
    document["errors"] = counts.errors;
    document["warnings"] = counts.warnings;
    document["files"] = report.size();
    WriteJsonText(document, out);
}
