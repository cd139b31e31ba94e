// Any bytes can be read as a source: the tokens are in order and in the source, and each is of its
// kind. Their places are those that a naive count gives.
//
// Input: a byte, odd for Swift; the source.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz/Check.h"
#include "tools/orva-strings/checks/FindingCollector.h"
#include "tools/orva-strings/hosts/SourceReader.h"

namespace {

using Kind = SourceToken::Kind;

void CheckPlace(std::string_view before, const Place& place) {
    Check(place.line == static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n')),
          "the line of a token");
    const std::size_t begin = before.rfind('\n') + 1;  // 0 if there is no line feed
    Check(place.column == CountCharacters(before.substr(begin)), "the column of a token");
}

void CheckToken(const SourceToken& token, SourceLanguage language) {
    switch (token.kind) {
        case Kind::kSign:
            Check(token.text.size() == 1, "a sign is one character");
            break;
        case Kind::kWord:
            Check(!token.text.empty(), "a word is not empty");
            Check(token.text.find_first_of(" \t\r\n\"'()") == std::string_view::npos,
                  "a word has no blanks, quotes or parentheses");
            break;
        case Kind::kLiteral:
            Check(language == SourceLanguage::kSwift || !token.isOpen,
                  "no literal of C goes on with an expression");
            break;
        case Kind::kEnd:
            break;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::string_view source(reinterpret_cast<const char*>(data + 1), size - 1);
    const SourceLanguage language =
        (data[0] & 1U) != 0 ? SourceLanguage::kSwift : SourceLanguage::kC;
    SourceReader reader(source, language);
    SourcePlaces places(source);
    std::size_t count = 0;
    std::size_t last = 0;
    for (SourceToken token = reader.Next(); token.kind != Kind::kEnd; token = reader.Next()) {
        Check(token.begin < source.size(), "a token begins in the source");
        Check(count == 0 || token.begin > last, "each token begins after the one before");
        last = token.begin;
        CheckToken(token, language);
        const Place place = places.PlaceOf(token.begin);
        if (++count < 100) {
            CheckPlace(source.substr(0, token.begin), place);
        }
    }
    Check(reader.Next().kind == Kind::kEnd, "the end stays");
    return 0;
}
