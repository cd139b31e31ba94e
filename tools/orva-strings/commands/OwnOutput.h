#ifndef ORVALANGUAGE_TOOLS_COMMANDS_OWNOUTPUT_H
#define ORVALANGUAGE_TOOLS_COMMANDS_OWNOUTPUT_H

#include <functional>
#include <optional>
#include <string>

// Reads the file that a command is about to replace, so that a slip costs no other file. Nothing if it
// is missing. Throws if it is not a regular file, can't be read, or is neither empty nor the command's
// own, as isOwn tells from its content.
std::optional<std::string> ReadOwnOutput(const std::string& path, const std::string& command,
                                         const std::function<bool(const std::string&)>& isOwn);

#endif
