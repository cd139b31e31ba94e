#ifndef ORVALANGUAGE_TOOLS_HOSTS_MAINBUNDLE_H
#define ORVALANGUAGE_TOOLS_HOSTS_MAINBUNDLE_H

#include <filesystem>

struct __CFBundle;  // NOLINT(bugprone-reserved-identifier): the platform's own name

// Opens what would be the main bundle of a process with this executable, whose path is absolute and
// without links. Returns null if that fails. The caller closes it with CloseBundle.
__CFBundle* OpenMainBundle(const std::filesystem::path& executable);

#endif
