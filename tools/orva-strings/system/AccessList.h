#ifndef ORVALANGUAGE_TOOLS_SYSTEM_ACCESSLIST_H
#define ORVALANGUAGE_TOOLS_SYSTEM_ACCESSLIST_H

// Copies the access control list of the file at `from` to the open file `to`, or removes it if there
// is none. Returns false if the system refuses; `to` may then be partly changed. The mode's group bits
// can limit the list, so set the mode afterwards.
bool CopyAccessList(const char* from, int to);

#endif
