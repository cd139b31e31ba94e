#ifndef ORVALANGUAGE_SUPPORT_OPENBUNDLE_H
#define ORVALANGUAGE_SUPPORT_OPENBUNDLE_H

#include <filesystem>

struct __CFBundle;  // NOLINT(bugprone-reserved-identifier): the platform's own name

// Opens the folder as a bundle, as the platform does. Returns null if that fails. The caller closes
// the bundle.
__CFBundle* OpenBundle(const std::filesystem::path& folder);

// Closes a bundle; null is allowed.
void CloseBundle(__CFBundle* bundle);

#endif
