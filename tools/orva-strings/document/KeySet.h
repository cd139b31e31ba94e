#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_KEYSET_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_KEYSET_H

#include <string_view>
#include <unordered_set>

// Keys, as views of the bytes of a file.
using KeySet = std::unordered_set<std::string_view>;

#endif
