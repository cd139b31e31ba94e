#ifndef ORVALANGUAGE_SUPPORT_OPENBUNDLE_H
#define ORVALANGUAGE_SUPPORT_OPENBUNDLE_H

#include <filesystem>

struct __CFBundle;  // NOLINT(bugprone-reserved-identifier): the platform's own name

// The bundle at a folder, in each system's way: the caller's to close. Null if there is none.
__CFBundle* OpenBundle(const std::filesystem::path& folder);

// Closes a bundle; null is fine.
void CloseBundle(__CFBundle* bundle);

#endif
