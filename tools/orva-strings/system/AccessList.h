#ifndef ORVALANGUAGE_TOOLS_SYSTEM_ACCESSLIST_H
#define ORVALANGUAGE_TOOLS_SYSTEM_ACCESSLIST_H

// Gives an open file the list of further users' rights that the file of a path has, or none if that
// has none: each system's way. Returns false, with the open file's list as far as it was changed, if
// the system refuses. Where a list counts, the group's bits of a mode limit it, so set them last.
bool CopyAccessList(const char* from, int to);

#endif
