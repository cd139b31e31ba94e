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
// file that is named itself is a source whatever its name is. Throws std::exception if a folder can't
// be read or has no source.
std::vector<SourceFile> FindSources(const std::vector<std::string>& folders);

#endif
