#ifndef ORVALANGUAGE_TOOLS_TOOL_H
#define ORVALANGUAGE_TOOLS_TOOL_H

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "tools/orva-strings/cli/Console.h"

// Runs the tool with its arguments, without the program name. readInput returns the bytes of
// standard input and may throw; terminals says which of the two streams are terminals. Returns the
// exit status: 0 on success, 1 if a finding is an error, 2 on any other failure. Throws nothing.
int RunTool(std::vector<std::string> arguments, const std::function<std::string()>& readInput,
            std::ostream& out, std::ostream& err, Terminals terminals = {});

#endif
