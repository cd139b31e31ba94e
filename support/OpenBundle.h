#ifndef ORVALANGUAGE_SUPPORT_OPENBUNDLE_H
#define ORVALANGUAGE_SUPPORT_OPENBUNDLE_H

#include <filesystem>

struct __CFBundle;  // NOLINT(bugprone-reserved-identifier): the platform's own name

// Opens the bundle at a folder, as the platform does. The caller closes it. Null if it has none.
__CFBundle* OpenBundle(const std::filesystem::path& folder);

// Closes a bundle; null is allowed.
void CloseBundle(__CFBundle* bundle);

#endif
