#ifndef ORVALANGUAGE_TOOLS_CLI_JSON_H
#define ORVALANGUAGE_TOOLS_CLI_JSON_H

#include <string>
#include <string_view>

// A text as a JSON string, with its quotes. Bytes that are not UTF-8 are replaced by U+FFFD.
// Everything but ASCII is escaped, since some of it could drive the terminal.
//
// Objects are written by their writers, whole rows at a time: a large one would take many times the
// file's size, and nlohmann-json's own end the process if memory runs out while they are destroyed.
std::string JsonText(std::string_view text);

#endif
