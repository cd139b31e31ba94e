// Prints a report in SARIF that has every rule, findings with and without a place, and every byte.
#include <cstddef>
#include <iostream>
#include <string>

#include "tools/orva-strings/formats/Report.h"

int main() {
    std::string bytes;
    for (int byte = 0; byte <= 0xFF; ++byte) {
        bytes += static_cast<char>(byte);
    }
    Report report = {{"Sample.strings", {}}, {"/tmp/" + bytes.substr(1), {}}, {"-", {}}};
    for (std::size_t i = 0; i < kAllRuleCount; ++i) {
        const auto rule = static_cast<Rule>(i);
        report[0].findings.push_back({rule, Severity::kError, Place{i, i}, "en", "MENU", "{0}"});
        report[1].findings.push_back({rule, Severity::kWarning, Place{i, 0}, bytes, bytes, bytes});
        report[2].findings.push_back({rule, Severity::kNote, {}, "", "", "Größe"});
    }
    WriteSarif(report, std::cout);
}
