#ifndef ORVALANGUAGE_TOOLS_SYSTEM_ACCESSLIST_H
#define ORVALANGUAGE_TOOLS_SYSTEM_ACCESSLIST_H

// Copies the access list (ACL) of the file at `from` to the open file `to`, or removes the one of
// `to` if `from` has none. Returns false if the system refuses; the list may then be partly
// changed. The mode's group bits can limit the list, so set the mode afterwards.
bool CopyAccessList(const char* from, int to);

#endif
