// Arguments of the commands that print a report, and what they do.
#ifndef ORVALANGUAGE_TOOLS_COMMANDS_REPORTARGUMENTS_H
#define ORVALANGUAGE_TOOLS_COMMANDS_REPORTARGUMENTS_H

#include <ostream>
#include <string>

#include "tools/orva-strings/cli/Arguments.h"
#include "tools/orva-strings/cli/Console.h"
#include "tools/orva-strings/formats/Report.h"

constexpr Argument kReportFormat = {"--format",
                                    "FORMAT",
                                    "The form of the output; text by default",
                                    Role::kText,
                                    false,
                                    nullptr,
                                    "text|json|sarif|github"};

constexpr Argument kFailOn = {
    "--fail-on",    "SEVERITY", "The least severe findings for exit status 1; error by default",
    Role::kText,    false,      nullptr,
    "error|warning"};

void WriteReport(const Report& report, const std::string& format, bool isColored,
                 std::ostream& out);

// kFindings if a finding is as severe as failOn says.
ExitStatus StatusOf(const Report& report, const std::string& failOn);

#endif
