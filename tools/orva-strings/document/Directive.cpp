#include "tools/orva-strings/document/Directive.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "tools/orva-strings/Ascii.h"
#include "tools/orva-strings/document/LineText.h"

std::optional<Directive> ReadDirective(std::string_view text) {
    if (!IsCommentLike(text)) {
        return std::nullopt;
    }
    text.remove_prefix(std::min(text.find_first_not_of(" \t/#;*-"), text.size()));
    constexpr std::string_view kMark = "orva:";
    if (text.substr(0, kMark.size()) != kMark) {
        return std::nullopt;
    }
    text = TrimBlanks(text.substr(kMark.size()));
    if (text.size() >= 2 && text.substr(text.size() - 2) == "*/") {
        text.remove_suffix(2);
    }
    const std::string_view name = TakeWord(text);
    return Directive{name, TrimBlanks(text)};
}

std::string_view TakeWord(std::string_view& text) {
    text = TrimBlanks(text);
    const std::size_t length = std::min(text.find_first_of(" \t"), text.size());
    const std::string_view word = text.substr(0, length);
    text.remove_prefix(length);
    return word;
}

std::optional<std::size_t> ReadNumber(std::string_view text) {
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number)
                                                                    : std::nullopt;
}

bool IsRightBelowHeader(const StringsReader& line, bool wasBelow) {
    const std::string_view text = line.Line().text;
    return line.IsHeader() || (wasBelow && (IsCommentLike(text) || TrimBlanks(text).empty()));
}

bool IsLanguageCode(std::string_view text) {
    constexpr std::size_t kMaxSubtag = 8;
    const std::size_t language = std::min(text.find('-'), text.size());
    if (language < 2 || language > 3 ||
        !std::all_of(text.begin(), text.begin() + language, IsLetter)) {
        return false;
    }
    for (text.remove_prefix(language); !text.empty();) {
        text.remove_prefix(1);  // the hyphen
        const std::size_t length = std::min(text.find('-'), text.size());
        if (length == 0 || length > kMaxSubtag ||
            !std::all_of(text.begin(), text.begin() + length, IsLetterOrDigit)) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}
