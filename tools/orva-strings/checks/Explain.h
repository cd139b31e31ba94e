#ifndef ORVALANGUAGE_TOOLS_CHECKS_EXPLAIN_H
#define ORVALANGUAGE_TOOLS_CHECKS_EXPLAIN_H

#include <ostream>

#include "tools/orva-strings/checks/Rules.h"

// Each writes Markdown.

// What a rule is about, with its example.
void WriteRule(Rule rule, std::ostream& out);

// All rules: a table, then each as WriteRule does.
void WriteAllRules(std::ostream& out);

#endif
