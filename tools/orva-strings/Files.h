#ifndef ORVALANGUAGE_TOOLS_FILES_H
#define ORVALANGUAGE_TOOLS_FILES_H

#include <string>
#include <string_view>

// Each throws std::system_error, with the file's name as its text, if the system refuses.

// The bytes of a file.
std::string ReadFile(const std::string& path);

// Puts bytes in place of those of a file that is there. Whenever the process or the machine stops,
// the file holds all of the old bytes or all of the new ones. Its mode stays, and so does a link
// that leads to it.
void ReplaceFile(const std::string& path, std::string_view bytes);

// Makes a file that only its owner may read and write. Refuses if it is there already.
void CreatePrivateFile(const std::string& path, std::string_view bytes);

#endif
