#ifndef ORVALANGUAGE_TOOLS_COMMANDS_RULEARGUMENTS_H
#define ORVALANGUAGE_TOOLS_COMMANDS_RULEARGUMENTS_H

#include <string>
#include <vector>

#include "tools/orva-strings/checks/Rules.h"

// The rule of this name. Throws UsageError if there is none.
Rule RuleOfName(const std::string& name);

// The rules' severities, with those named given another one. Throws UsageError if a name is unknown.
RuleSeverities SeveritiesWith(const std::vector<std::string>& errors,
                              const std::vector<std::string>& warnings,
                              const std::vector<std::string>& disabled);

#endif
