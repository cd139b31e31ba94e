#include "tools/orva-strings/document/NearMisses.h"

#include <algorithm>
#include <optional>
#include <string>

#include "tools/orva-strings/Ascii.h"
#include "tools/orva-strings/document/LineText.h"

namespace {

// Calls visit(text, isWholeLine) for a line's text, and again for the text after each carriage
// return within it, up to the next.
template <typename Visit>
void ForEachPiece(std::string_view text, const Visit& visit) {
    visit(text, true);
    for (std::size_t at = text.find('\r'); at != std::string_view::npos;) {
        const std::size_t next = text.find('\r', at + 1);
        visit(text.substr(at + 1, next - at - 1), false);
        at = next;
    }
}

// Whether a byte ends the blanks and comment marks before a key. A carriage return does, since what
// follows it is a separate piece.
bool CanBeginKey(char c) {
    return IsLetterOrDigit(c) || c == '_' || c == '\r';
}

bool BeginsWithIde(std::string_view text) {
    const auto isLetterOfIde = [&](std::size_t i) { return (text[i] | 0x20) == "ide"[i]; };
    return text.size() >= 3 && isLetterOfIde(0) && isLetterOfIde(1) && isLetterOfIde(2);
}

// Whether a key that begins with "ide" in any case was probably meant as a protected one.
bool IsNearProtectedKey(std::string_view key) {
    // "Ideal" is a different word.
    return key.substr(0, 3) == "IDE" || key.size() == 3 || !IsLetter(key[3]);
}

// What FindNearProtected calls for one piece.
struct NearProtected {
    std::string_view key;
    std::string_view rest;  // after what was meant as the equals sign
};

std::optional<NearProtected> SplitNearProtected(std::string_view text) {
    const auto* const begin = std::find_if(text.begin(), text.end(), CanBeginKey);
    text.remove_prefix(static_cast<std::size_t>(begin - text.begin()));
    if (!BeginsWithIde(text)) {  // most lines
        return std::nullopt;
    }
    // A colon or blanks before a quote may be meant as the equals sign.
    const std::size_t quote = text.find('"');
    std::size_t separator = std::min(text.find('='), text.find_first_of(": \t"));
    const std::string_view key = text.substr(0, separator);
    separator = text.find_first_not_of(": \t", std::min(separator, text.size()));
    const bool hasEquals = separator != std::string_view::npos && text[separator] == '=';
    if (!IsNearProtectedKey(key) || (!hasEquals && separator != quote) ||
        separator == std::string_view::npos) {
        return std::nullopt;
    }
    return NearProtected{key, text.substr(separator + (hasEquals ? 1 : 0))};
}

}  // namespace

void FindMisplaced(const StringsReader& lines,
                   const std::function<void(std::string_view key, Obstacle)>& found) {
    ForEachPiece(lines.Line().text, [&](std::string_view piece, bool isWholeLine) {
        const std::string_view text = WithoutByteOrderMarks(piece);
        if (!IsHeader(text) && !IsProtectedEntry(text)) {
            return;
        }
        const std::string_view key = text.substr(0, text.find('='));
        if (text.size() != piece.size()) {
            found(key, Obstacle::kByteOrderMark);
        } else if (!isWholeLine) {
            found(key, Obstacle::kCarriageReturn);
        } else if (!lines.IsInSection()) {
            found(key, Obstacle::kNoSectionYet);
        }
    });
}

void FindNearProtected(std::string_view text,
                       const std::function<void(const StringsEntry&)>& found) {
    ForEachPiece(text, [&](std::string_view piece, bool /*isWholeLine*/) {
        if (IsProtectedEntry(WithoutByteOrderMarks(piece))) {
            return;
        }
        if (const std::optional<NearProtected> near = SplitNearProtected(piece)) {
            // Read with a key that is long enough, as this one may be too short.
            const std::string line = "IDE_=" + std::string(near->rest);
            std::string buffer;
            StringsEntry entry = *ReadEntry(line, buffer);
            entry.key = near->key;
            found(entry);
        }
    });
}
