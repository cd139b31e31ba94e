#include "tools/orva-strings/document/LineText.h"

#include <algorithm>
#include <iterator>

namespace {

bool BeginsWith(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

// Whether a text begins with one of these.
template <typename Prefixes>
bool BeginsWithAny(std::string_view text, const Prefixes& prefixes) {
    return std::any_of(std::begin(prefixes), std::end(prefixes),
                       [&](std::string_view prefix) { return BeginsWith(text, prefix); });
}

}  // namespace

std::string_view TrimBlanks(std::string_view text) {
    constexpr char kBlanks[] = " \t";
    const std::size_t begin = text.find_first_not_of(kBlanks);
    return begin == std::string_view::npos
               ? std::string_view()
               : text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}

std::string_view WithoutByteOrderMarks(std::string_view text) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    while (BeginsWith(text, kByteOrderMark)) {
        text.remove_prefix(kByteOrderMark.size());
    }
    return text;
}

bool IsCommentLike(std::string_view text) {
    constexpr std::string_view kMarks[] = {"#", ";", "//", "/*", "*", "--"};
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    return BeginsWithAny(text, kMarks);
}

bool IsConflictMarker(std::string_view text) {
    constexpr std::string_view kMarkers[] = {"<<<<<<< ", "||||||| ", ">>>>>>> "};
    return text == "=======" || BeginsWithAny(text, kMarkers);
}
