#include "tools/orva-strings/page/Html.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <utf8cpp/utf8.h>

#include "platform/Sha256.h"

namespace {

constexpr char kReplacement[] = "\xEF\xBF\xBD";

bool IsControl(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte == 0x7F || (byte < 0x20 && c != '\n' && c != '\t');
}

std::string Base64(const std::uint8_t (&digest)[kSha256Digest]) {
    constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    std::uint32_t bits = 0;
    unsigned count = 0;  // of the bits that are not written yet
    for (const std::uint8_t byte : digest) {
        bits = (bits << 8U) | byte;
        for (count += 8; count >= 6; count -= 6) {
            text += kDigits[(bits >> (count - 6U)) & 0x3FU];
        }
    }
    static_assert(kSha256Digest % 3 == 2, "four bits are left");
    text += kDigits[(bits << 2U) & 0x3FU];
    return text + '=';
}

}  // namespace

std::string HtmlText(std::string_view text) {
    std::string valid;
    utf8::replace_invalid(text.begin(), text.end(), std::back_inserter(valid));
    std::string html;
    for (const char c : valid) {
        if (c == '&') {
            html += "&amp;";
        } else if (c == '<') {
            html += "&lt;";
        } else if (c == '>') {
            html += "&gt;";
        } else if (c == '"') {
            html += "&quot;";
        } else if (c == '\'') {
            html += "&#39;";
        } else if (IsControl(c)) {
            html += kReplacement;
        } else {
            html += c;
        }
    }
    return html;
}

std::string InlineSource(std::string_view bytes) {
    std::uint8_t digest[kSha256Digest];
    Sha256(bytes, digest);
    return "'sha256-" + Base64(digest) + '\'';
}
