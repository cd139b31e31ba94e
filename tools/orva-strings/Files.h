#ifndef ORVALANGUAGE_TOOLS_FILES_H
#define ORVALANGUAGE_TOOLS_FILES_H

#include <functional>
#include <string>
#include <string_view>

// Each throws std::system_error, with the file's name as its text, if the system refuses.

// The bytes of a file.
std::string ReadFile(const std::string& path);

// Calls take with the bytes of a file, one piece after the other, none of more than 64 KiB.
void ReadFileInPieces(const std::string& path, const std::function<void(std::string_view)>& take);

// The bytes of standard input.
std::string ReadStandardInput();

// Puts bytes in place of those of a regular file that is there. Whenever the process or the machine
// stops, the file holds all of the old bytes or all of the new ones. Its mode stays, and so do its
// owner, its group and its access list, where the system allows that, and a symbolic link that leads
// to it. Without the old owner and group the mode loses the bits that act in their names, without
// the old group or list nobody but the owner gets more than both the group and others had. Signals
// that would end the process wait until it is done. Throws std::runtime_error if it is no regular
// file, or no longer holds the bytes before.
void ReplaceFile(const std::string& path, std::string_view before, std::string_view bytes);

// Makes a file that only its owner may read and write. Refuses if it is there already. Signals wait
// here too.
void CreatePrivateFile(const std::string& path, std::string_view bytes);

#endif
