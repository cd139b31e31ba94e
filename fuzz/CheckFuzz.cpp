// Any bytes can be checked: the findings are in order and about places that exist, the same each
// time, and a rule that is off has none.
//
// Input: a byte of options, the file.
#include <cstddef>
#include <cstdint>
#include <string>
#include <tuple>

#include "fuzz/Check.h"
#include "tools/orva-strings/checks/CheckStrings.h"
#include "tools/orva-strings/checks/FindingCollector.h"
#include "tools/orva-strings/protection/MasterKey.h"

namespace {

auto PlaceOf(const RuleFinding& finding) {
    return finding.place ? std::tuple(true, finding.place->line, finding.place->column)
                         : std::tuple(false, std::size_t{0}, std::size_t{0});
}

// The line that is this many lines after a file's first.
std::string LineAt(const std::string& file, std::size_t number) {
    std::size_t start = 0;
    for (; number > 0; --number) {
        start = file.find('\n', start) + 1;
        Check(start != 0, "the line of a finding exists");
    }
    return file.substr(start, file.find('\n', start) - start);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::string file(reinterpret_cast<const char*>(data + 1), size - 1);
    static const ProtectionKeys keys = MasterKey::BuiltIn().Derive();
    CheckOptions options(keys);
    options.isShipped = (data[0] & 1U) != 0;
    options.rejectsKey = (data[0] & 2U) != 0;
    if ((data[0] & 4U) != 0) {
        options.base = file;
    }
    if ((data[0] & 8U) != 0) {
        options.reference = "de";
        options.required = {"en", "de"};
    }
    if ((data[0] & 16U) != 0) {
        options.severities.fill(Severity::kWarning);
    }
    const RuleFindings findings = CheckStrings(file, options);
    for (std::size_t i = 0; i < findings.size(); ++i) {
        const RuleFinding& finding = findings[i];
        Check(i == 0 || PlaceOf(findings[i - 1]) <= PlaceOf(finding), "findings are in order");
        if (finding.place && i < 100) {
            Check(finding.place->column <= CountCharacters(LineAt(file, finding.place->line)),
                  "the column of a finding exists");
        }
        Check(finding.rule != Rule::kStale, "nothing is stale in a file that is as it was");
    }
    if (!findings.empty()) {
        options.severities[static_cast<std::size_t>(findings[0].rule)].reset();
        for (const RuleFinding& finding : CheckStrings(file, options)) {
            Check(finding.rule != findings[0].rule, "a rule that is off has no findings");
        }
    }
    return 0;
}
