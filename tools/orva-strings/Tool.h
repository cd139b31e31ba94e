#ifndef ORVALANGUAGE_TOOLS_TOOL_H
#define ORVALANGUAGE_TOOLS_TOOL_H

#include <istream>
#include <ostream>
#include <string>
#include <vector>

// Runs the tool with its arguments, the program's own name left out. Returns the exit status: 0 if
// all is done, 1 if something in a file stands in the way, 2 if the arguments are wrong or the
// system refuses. Throws nothing but std::bad_alloc.
int RunTool(std::vector<std::string> arguments, std::istream& in, std::ostream& out,
            std::ostream& err);

#endif
