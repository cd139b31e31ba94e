#ifndef ORVALANGUAGE_TOOLS_CLI_COLOR_H
#define ORVALANGUAGE_TOOLS_CLI_COLOR_H

#include <string_view>

// Whether to colour what is written to a stream. The choice is always, never or auto: auto colours
// for a terminal, unless NO_COLOR is set and not empty, or TERM says that the terminal has no colours.
bool UsesColor(std::string_view choice, bool isTerminal);

#endif
