#ifndef ORVALANGUAGE_TOOLS_COMMANDS_KEYGROUP_H
#define ORVALANGUAGE_TOOLS_COMMANDS_KEYGROUP_H

#include "tools/orva-strings/cli/Command.h"

constexpr CommandGroup kKeyGroup = {"key", "Make keys and tell them apart"};

#endif
