// Arguments that several commands share.
#ifndef ORVALANGUAGE_TOOLS_COMMANDS_COMMONARGUMENTS_H
#define ORVALANGUAGE_TOOLS_COMMANDS_COMMONARGUMENTS_H

#include "tools/orva-strings/cli/Arguments.h"

constexpr Argument kStringsFile = {"FILE", "", "The strings file; - is standard input",
                                   Role::kInput, true};

constexpr Argument kKeyFile = {
    "--key-file", "KEYFILE",
    "File of 64 hexadecimal digits, - for standard input; without it, the key built in",
    Role::kKey};

#endif
