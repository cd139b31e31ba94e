#ifndef ORVALANGUAGE_TOOLS_HOSTS_MACROS_H
#define ORVALANGUAGE_TOOLS_HOSTS_MACROS_H

#include <string_view>

// Whether a name is a macro of compilers for C and C++, or of their standard libraries, so that no
// constant can have it. Those that begin with an underscore, and the formats of <inttypes.h>, are not
// known here.
bool IsMacro(std::string_view name);

#endif
