#ifndef ORVALANGUAGE_TOOLS_CLI_COMMANDLINE_H
#define ORVALANGUAGE_TOOLS_CLI_COMMANDLINE_H

#include <ostream>
#include <string>
#include <vector>

#include "tools/orva-strings/cli/Command.h"

// Finds the command that the arguments ask for and sets its variables. Returns null if they asked for
// help or the version, which is written to out. Throws UsageError if they are wrong.
Command* ParseCommandLine(const Commands& commands, std::vector<std::string> arguments,
                          std::ostream& out);

#endif
