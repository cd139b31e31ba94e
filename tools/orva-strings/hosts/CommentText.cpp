#include "tools/orva-strings/hosts/CommentText.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <utf8cpp/utf8.h>

namespace {

constexpr std::size_t kMaxCharacters = 80;

// Control characters, line separators, and marks, embeddings and isolates of a direction.
bool IsBlanked(std::uint32_t character) {
    return character < 0x20 || (character >= 0x7F && character <= 0x9F) || character == 0x061C ||
           (character >= 0x200E && character <= 0x200F) ||
           (character >= 0x2028 && character <= 0x202E) ||
           (character >= 0x2066 && character <= 0x2069);
}

}  // namespace

std::string CommentText(std::string_view text) {
    constexpr std::size_t kMaxBytes = 4;  // of a character
    std::string valid;
    text = text.substr(0, kMaxCharacters * kMaxBytes);
    utf8::replace_invalid(text.begin(), text.end(), std::back_inserter(valid));
    std::string comment;
    std::size_t count = 0;
    for (auto at = valid.begin(); at != valid.end();) {
        if (++count == kMaxCharacters) {
            return comment + "…";
        }
        const auto begin = at;
        if (IsBlanked(utf8::unchecked::next(at))) {
            comment += ' ';
            continue;
        }
        const char last = comment.empty() ? '\0' : comment.back();
        if ((last == '*' && *begin == '/') || (last == '/' && *begin == '*')) {
            comment += ' ';
        }
        comment.append(begin, at);
    }
    return comment;
}
