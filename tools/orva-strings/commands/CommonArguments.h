// Arguments that several commands share.
#ifndef ORVALANGUAGE_TOOLS_COMMANDS_COMMONARGUMENTS_H
#define ORVALANGUAGE_TOOLS_COMMANDS_COMMONARGUMENTS_H

#include "tools/orva-strings/cli/Arguments.h"

constexpr Argument kStringsFile = {"FILE", "", "The strings file; - is standard input",
                                   Role::kInput, true};

constexpr Argument kKeyFile = {
    "--key-file", "KEYFILE",
    "File of 64 hexadecimal digits; - is standard input; without this option, the built-in key",
    Role::kKey};

#endif
