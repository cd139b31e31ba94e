#include "tools/orva-strings/document/Encoding.h"

bool IsUtf16(std::string_view bytes) {
    const std::string_view mark = bytes.substr(0, 2);
    const auto isNul = [&](std::size_t i) { return i < bytes.size() && bytes[i] == '\0'; };
    return mark == "\xFF\xFE" || mark == "\xFE\xFF" || (!isNul(0) && isNul(1) && isNul(3)) ||
           (isNul(0) && !isNul(1) && isNul(2));
}

bool HasOnlyCarriageReturns(std::string_view bytes) {
    const std::size_t first = bytes.find('\r');
    return bytes.find('\n') == std::string_view::npos && first != std::string_view::npos &&
           first + 1 < bytes.size();
}
