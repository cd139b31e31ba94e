#include "tools/orva-strings/Printable.h"

namespace {

// Whether the byte at a place belongs to a control character: of ASCII, or of those that are two
// bytes in UTF-8, U+0080 to U+009F.
bool IsControl(std::string_view text, std::size_t i) {
    const auto byteAt = [&](std::size_t at) {
        return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
    };
    const auto isSecond = [&](std::size_t at) {
        return at > 0 && byteAt(at - 1) == 0xC2 && byteAt(at) >= 0x80 && byteAt(at) <= 0x9F;
    };
    const unsigned byte = byteAt(i);
    return (byte < ' ' && byte != '\t') || byte == 0x7F || isSecond(i) || isSecond(i + 1);
}

}  // namespace

std::ostream& operator<<(std::ostream& out, Printable printable) {
    const std::string_view text = printable.text;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (IsControl(text, i)) {
            const auto byte = static_cast<unsigned char>(text[i]);
            out << "\\x"
                << "0123456789ABCDEF"[byte >> 4U] << "0123456789ABCDEF"[byte & 0xFU];
        } else {
            out << text[i];
        }
    }
    return out;
}
