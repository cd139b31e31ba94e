#ifndef ORVALANGUAGE_TOOLS_HOSTS_SOURCEFILES_H
#define ORVALANGUAGE_TOOLS_HOSTS_SOURCEFILES_H

#include <string>
#include <vector>

#include "tools/orva-strings/hosts/SourceReader.h"

struct SourceFile {
    std::string path;
    SourceLanguage language;
};

// The sources in C, C++, Objective-C and Swift in these folders, by the endings of their names, in the
// order of their paths, each once. Hidden files and folders, and links to folders, are left out. A
// file that is named itself is a source whatever its name is. Adds to skipped, with the reason, what
// is named like a source but is a dangling link, a pipe or a device. Throws std::exception if a folder
// can't be read or has no source, or if what is named itself is not a regular file.
std::vector<SourceFile> FindSources(const std::vector<std::string>& folders,
                                    std::vector<std::string>& skipped);

#endif
