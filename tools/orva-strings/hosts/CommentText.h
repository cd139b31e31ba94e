#ifndef ORVALANGUAGE_TOOLS_HOSTS_COMMENTTEXT_H
#define ORVALANGUAGE_TOOLS_HOSTS_COMMENTTEXT_H

#include <string>
#include <string_view>

// A text for a comment of one line that something other than a backslash follows. Control characters,
// and those that break a line or change the direction of writing, become blanks, bytes that are not
// UTF-8 become U+FFFD, and what is not seen becomes its number, as in [U+200B]. What would begin or end
// a comment is divided. A backslash is put in front of each that would begin a command of Doxygen, @
// and <. From the 80th character on the text is cut.
std::string CommentText(std::string_view text);

#endif
