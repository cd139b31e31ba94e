#ifndef ORVALANGUAGE_TOOLS_CLI_COMMANDLINE_H
#define ORVALANGUAGE_TOOLS_CLI_COMMANDLINE_H

#include <ostream>
#include <string>
#include <vector>

#include "tools/orva-strings/cli/Command.h"

// Finds the command that the arguments name and sets its variables. If they request help or the
// version, writes that to out and returns null. Throws UsageError if they are wrong.
Command* ParseCommandLine(const Commands& commands, std::vector<std::string> arguments,
                          std::ostream& out);

#endif
