#include "tools/orva-strings/document/NearHeader.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <string>

#include <OrvaLanguage/KorString.h>

#include "tools/orva-strings/document/LineText.h"
#include "tools/orva-strings/document/StringsReader.h"

namespace {

// The keyword, without the equals sign.
std::string_view Keyword() {
    const std::string_view statement = KorString::LANG_STATEMENT;
    return statement.substr(0, statement.find('='));
}

std::string UpperCase(std::string_view word) {
    std::string upper(word);
    for (char& c : upper) {
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }
    return upper;
}

// Whether a letter is missing, added or another, or two neighbours are swapped.
bool IsOneLetterOff(std::string_view a, std::string_view b) {
    while (!a.empty() && !b.empty() && a.front() == b.front()) {
        a.remove_prefix(1);
        b.remove_prefix(1);
    }
    while (!a.empty() && !b.empty() && a.back() == b.back()) {
        a.remove_suffix(1);
        b.remove_suffix(1);
    }
    const bool isSwap = a.size() == 2 && b.size() == 2 && a[0] == b[1] && a[1] == b[0];
    return isSwap || std::max(a.size(), b.size()) == 1;
}

// Whether one word has the letters of the other and no others. A word with a letter of its own, such
// as QVLAND, may be a key.
bool HaveSameLetters(std::string_view a, std::string_view b) {
    return std::set<char>(a.begin(), a.end()) == std::set<char>(b.begin(), b.end());
}

// What is wrong with the text before the equals sign, if it was probably meant as the keyword.
std::optional<HeaderFault> FaultOf(std::string_view before) {
    const std::string_view word = TrimBlanks(before);
    if (word.size() + 1 < Keyword().size() || word.size() > Keyword().size() + 1) {
        return std::nullopt;
    }
    if (word == Keyword()) {
        return word.end() == before.end() ? HeaderFault::kBlankInFront
                                          : HeaderFault::kBlankBeforeEquals;
    }
    const std::string upper = UpperCase(word);
    if (upper == Keyword()) {
        return HeaderFault::kCase;
    }
    if (IsOneLetterOff(upper, Keyword())) {
        return HeaderFault::kMisspelt;
    }
    return std::nullopt;
}

}  // namespace

std::optional<NearHeader> FindNearHeader(std::string_view text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos || IsHeader(text)) {
        return std::nullopt;
    }
    const std::string_view before = text.substr(0, equals);
    const std::optional<HeaderFault> fault = FaultOf(before);
    if (!fault || IsCommentLike(text)) {
        return std::nullopt;
    }
    const std::string_view rest = text.substr(equals + 1);
    const std::string_view name = MeantSectionName(rest);
    // A word that is not quite the keyword, with a quoted text, may be an entry.
    const std::string_view unquoted = *fault < HeaderFault::kCase ? name : rest;
    const bool isUnmistakable =
        !name.empty() && unquoted.find_first_of("\"\r") == std::string_view::npos &&
        (*fault != HeaderFault::kMisspelt || HaveSameLetters(TrimBlanks(before), Keyword()));
    return NearHeader{*fault, name, isUnmistakable};
}

std::string_view MeantSectionName(std::string_view name) {
    name = TrimBlanks(name);
    const bool isQuoted =
        std::count(name.begin(), name.end(), '"') == 2 && name.front() == '"' && name.back() == '"';
    return isQuoted ? TrimBlanks(name.substr(1, name.size() - 2)) : name;
}
