#include "tools/orva-strings/commands/RuleArguments.h"

#include <optional>

#include "tools/orva-strings/cli/UsageError.h"

Rule RuleOfName(const std::string& name) {
    if (const auto rule = FindRule(name)) {
        return *rule;
    }
    throw UsageError("unknown rule '" + name + '\'' + DidYouMeanRule(name) +
                     " ('orva-strings explain' lists the rules)");
}

void ChooseSeverities(const std::vector<std::string>& errors,
                      const std::vector<std::string>& warnings,
                      const std::vector<std::string>& disabled, CheckOptions& options) {
    const auto set = [&](const std::vector<std::string>& names, std::optional<Severity> severity) {
        for (const std::string& name : names) {
            const auto rule = static_cast<std::size_t>(RuleOfName(name));
            options.severities[rule] = severity;
            options.areChosen[rule] = true;
        }
    };
    set(warnings, Severity::kWarning);
    set(errors, Severity::kError);
    set(disabled, std::nullopt);
}
