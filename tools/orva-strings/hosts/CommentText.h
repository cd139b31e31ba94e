#ifndef ORVALANGUAGE_TOOLS_HOSTS_COMMENTTEXT_H
#define ORVALANGUAGE_TOOLS_HOSTS_COMMENTTEXT_H

#include <string>
#include <string_view>

// A text for a comment of one line that something other than a backslash follows. Control characters,
// and those that break a line or change the direction of writing, become blanks, bytes that are not
// UTF-8 become U+FFFD, what would begin or end a comment is divided, and from the 80th character on
// the text is cut.
std::string CommentText(std::string_view text);

#endif
