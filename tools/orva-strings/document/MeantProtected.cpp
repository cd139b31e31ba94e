#include "tools/orva-strings/document/MeantProtected.h"

#include <algorithm>
#include <string>

#include "tools/orva-strings/document/NearMisses.h"

namespace {

bool IsLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool IsNameCharacter(char c) {
    return IsLetter(c) || (c >= '0' && c <= '9') || c == '_' || c == '.' || c == '-' || c == '/';
}

// From the first character of a name on.
std::string_view FromName(std::string_view text) {
    const auto* const begin = std::find_if(text.begin(), text.end(), IsNameCharacter);
    return text.substr(static_cast<std::size_t>(begin - text.begin()));
}

// Whether a word that begins with "IDE" comes before an equals sign, such as in a value whose closing
// quote was forgotten.
bool HasProtectedWord(std::string_view text) {
    for (std::size_t at = 0; (at = text.find("IDE", at)) != std::string_view::npos; at += 3) {
        if (at == 0 || !IsNameCharacter(text[at - 1])) {
            return text.find('=', at) != std::string_view::npos;
        }
    }
    return false;
}

}  // namespace

std::string_view MeantKey(std::string_view key) {
    const std::string_view text = FromName(key);
    const auto* const end = std::find_if_not(text.begin(), text.end(), IsNameCharacter);
    return text.substr(0, static_cast<std::size_t>(end - text.begin()));
}

std::string_view AfterMeantKey(std::string_view key) {
    return FromName(FromName(key).substr(MeantKey(key).size()));
}

bool BeginsAsProtected(std::string_view key) {
    std::string begin(key.substr(0, 3));
    for (char& c : begin) {
        c = static_cast<char>(c & '\xDF');
    }
    return key.substr(0, 3) == "IDE" || ((begin == "IDE" || begin == "DIE" || begin == "IED") &&
                                         (key.size() == 3 || !IsLetter(key[3])));
}

bool HoldsProtected(std::string_view line) {
    bool isFound = BeginsAsProtected(MeantKey(line)) || HasProtectedWord(line);
    FindNearProtected(line, [&](const StringsEntry&) { isFound = true; });
    return isFound;
}
