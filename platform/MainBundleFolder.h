#ifndef ORVALANGUAGE_PLATFORM_MAINBUNDLEFOLDER_H
#define ORVALANGUAGE_PLATFORM_MAINBUNDLEFOLDER_H

#include <filesystem>

// The application that an executable, by its absolute path, belongs to; empty if the path is. For
// bundles that are folders. Throws std::bad_alloc.
std::filesystem::path MainBundleFolder(const std::filesystem::path& executable);

#endif
