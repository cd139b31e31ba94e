#include "tools/orva-strings/cli/Printable.h"

#include <cstddef>
#include <cstdint>

#include "tools/orva-strings/Hex.h"

namespace {

// Whether byte i belongs to a control character: an ASCII one, or one of U+0080 to U+009F, which
// are two bytes in UTF-8.
bool IsControl(std::string_view text, std::size_t i) {
    const auto byteAt = [&](std::size_t at) {
        return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
    };
    const auto isSecond = [&](std::size_t at) {
        return at > 0 && byteAt(at - 1) == 0xC2 && byteAt(at) >= 0x80 && byteAt(at) <= 0x9F;
    };
    const unsigned byte = byteAt(i);
    return byte < ' ' || byte == 0x7F || isSecond(i) || isSecond(i + 1);
}

}  // namespace

std::string Printable(std::string_view text) {
    std::string printable;
    printable.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\\' || c == '"') {
            printable += {'\\', c};
        } else if (c == '\n') {
            printable += "\\n";
        } else if (c == '\t') {
            printable += "\\t";
        } else if (IsControl(text, i)) {
            const auto byte = static_cast<std::uint8_t>(c);
            printable += "\\x" + ToHexDigits(&byte, 1);
        } else {
            printable += c;
        }
    }
    return printable;
}

std::string PrintableName(std::string_view name) {
    const bool isPlain = !name.empty() && name.front() != ' ' && name.back() != ' ';
    return isPlain ? Printable(name) : '"' + Printable(name) + '"';
}
