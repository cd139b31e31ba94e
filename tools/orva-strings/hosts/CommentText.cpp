#include "tools/orva-strings/hosts/CommentText.h"

#include <cstddef>
#include <cstdint>
#include <iomanip>
#include <iterator>
#include <sstream>
#include <utf8cpp/utf8.h>

namespace {

constexpr std::size_t kMaxCharacters = 80;

// Characters that are not seen: the soft hyphen, zero-width ones that no language needs, and tags.
bool IsInvisible(std::uint32_t character) {
    return character == 0xAD || character == 0x180E || character == 0x200B ||
           (character >= 0x2060 && character <= 0x2064) ||
           (character >= 0x206A && character <= 0x206F) || character == 0xFEFF ||
           (character >= 0xE0000 && character <= 0xE007F);
}

// A character by its number.
std::string NumberOf(std::uint32_t character) {
    std::ostringstream number;
    number << "[U+" << std::hex << std::uppercase << std::setfill('0') << std::setw(4);
    number << character << ']';
    return number.str();
}

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
        const std::uint32_t character = utf8::unchecked::next(at);
        if (IsBlanked(character)) {
            comment += ' ';
            continue;
        }
        if (IsInvisible(character)) {
            comment += NumberOf(character);
            continue;
        }
        if (*begin == '\\' || *begin == '@' || *begin == '<') {
            comment += '\\';
        }
        const char last = comment.empty() ? '\0' : comment.back();
        if ((last == '*' && *begin == '/') || (last == '/' && *begin == '*')) {
            comment += ' ';
        }
        comment.append(begin, at);
    }
    return comment;
}
