#ifndef ORVALANGUAGE_PLATFORM_EXECUTABLEPATH_H
#define ORVALANGUAGE_PLATFORM_EXECUTABLEPATH_H

#include <filesystem>

// Returns the absolute path from which the running executable was started, even if that file has
// been replaced or removed since; empty if the system does not know. For bundles that are folders.
// Throws std::bad_alloc.
std::filesystem::path ExecutablePath();

#endif
