#ifndef ORVALANGUAGE_TOOLS_COMMANDS_RULEARGUMENTS_H
#define ORVALANGUAGE_TOOLS_COMMANDS_RULEARGUMENTS_H

#include <string>
#include <vector>

#include "tools/orva-strings/checks/CheckStrings.h"

// The rule with this name. Throws UsageError if no rule has it.
Rule RuleOfName(const std::string& name);

// Gives the rules named other severities. Throws UsageError if a name is unknown.
void ChooseSeverities(const std::vector<std::string>& errors,
                      const std::vector<std::string>& warnings,
                      const std::vector<std::string>& disabled, CheckOptions& options);

#endif
