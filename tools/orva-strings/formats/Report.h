#ifndef ORVALANGUAGE_TOOLS_FORMATS_REPORT_H
#define ORVALANGUAGE_TOOLS_FORMATS_REPORT_H

#include <ostream>
#include <string>
#include <vector>

#include "tools/orva-strings/checks/RuleFinding.h"

// What check found in one file, in the order of lines, findings about the whole file first.
struct FileReport {
    std::string file;  // its name, as given
    RuleFindings findings;
};
using Report = std::vector<FileReport>;

// Each writes a report in one format. All but JSON and SARIF, which have their own, escape names and
// texts by Printable.

// A line for each finding, "FILE:LINE:COL: SEVERITY: TEXT [RULE]", and one with the counts.
void WriteText(const Report& report, bool isColored, std::ostream& out);

void WriteJson(const Report& report, std::ostream& out);

// SARIF 2.1.0, for code scanning.
void WriteSarif(const Report& report, std::ostream& out);

// Workflow commands of GitHub Actions, which shows only the first ten of each severity: errors come
// first.
void WriteGitHub(const Report& report, std::ostream& out);

#endif
