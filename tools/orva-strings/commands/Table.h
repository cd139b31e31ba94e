#ifndef ORVALANGUAGE_TOOLS_COMMANDS_TABLE_H
#define ORVALANGUAGE_TOOLS_COMMANDS_TABLE_H

#include "tools/orva-strings/cli/Command.h"

// Every command, in the order of the help.
Commands MakeCommands();

#endif
