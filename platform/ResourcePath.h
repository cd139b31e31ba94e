// Where a bundle keeps a resource: the one thing the loader asks the system for, besides the file
// itself. One source for each system implements it; the build chooses.
#ifndef ORVALANGUAGE_PLATFORM_RESOURCEPATH_H
#define ORVALANGUAGE_PLATFORM_RESOURCEPATH_H

#include <cstddef>

struct __CFBundle;  // NOLINT(bugprone-reserved-identifier): the platform's own name

// Room for a path, its NUL included.
constexpr std::size_t kResourcePathCapacity = 1024;

// Writes the POSIX path of the file of this name in the bundle's resources folder into path, which
// comes zero-filled. The path need not exist.
//
// bundle    null is the main bundle.
// fileName  NUL-terminated UTF-8, not null.
//
// Leaves path an empty text if there is no such bundle, the name is not UTF-8, or the path and its
// NUL do not fit; in the last case CoreFoundation may cut the path off instead. Keeps nothing.
void GetResourcePath(__CFBundle* bundle, const char* fileName, char (&path)[kResourcePathCapacity]);

#endif
