#ifndef ORVALANGUAGE_TOOLS_TOOL_H
#define ORVALANGUAGE_TOOLS_TOOL_H

#include <functional>
#include <ostream>
#include <string>
#include <vector>

// Runs the tool with its arguments, the program's own name left out. readInput gives the bytes of
// standard input, and may throw. Returns the exit status: 0 if all is done, 1 if something in a file
// stands in the way, 2 if the arguments are wrong or the system refuses or memory runs out. Throws
// nothing.
int RunTool(std::vector<std::string> arguments, const std::function<std::string()>& readInput,
            std::ostream& out, std::ostream& err);

#endif
