// Where a bundle keeps a resource: all that the loader needs from the system besides the file
// itself. Each system has its own source; the build chooses.
#ifndef ORVALANGUAGE_PLATFORM_RESOURCEPATH_H
#define ORVALANGUAGE_PLATFORM_RESOURCEPATH_H

#include <cstddef>

struct __CFBundle;  // NOLINT(bugprone-reserved-identifier): the platform's own name

// Room for a path, its NUL included.
constexpr std::size_t kResourcePathCapacity = 1024;

// Writes to path the POSIX path of the file with this name in the bundle's resources folder. The
// caller passes path zero-filled. The file need not exist.
//
// bundle    null is the main bundle.
// fileName  NUL-terminated UTF-8, not null.
//
// Leaves path an empty text if there is no such bundle, the name is not UTF-8, or the path and its
// NUL do not fit; in the last case CoreFoundation may truncate the path instead. Keeps no argument.
void GetResourcePath(__CFBundle* bundle, const char* fileName, char (&path)[kResourcePathCapacity]);

#endif
