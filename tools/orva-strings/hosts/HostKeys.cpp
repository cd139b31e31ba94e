#include "tools/orva-strings/hosts/HostKeys.h"

#include <algorithm>
#include <unordered_set>

#include "tools/orva-strings/checks/SecretTexts.h"
#include "tools/orva-strings/document/LineText.h"
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

// The name that a text begins with.
std::string_view NameAt(std::string_view text) {
    const auto* const end = std::find_if_not(text.begin(), text.end(), IsNameCharacter);
    return text.substr(0, static_cast<std::size_t>(end - text.begin()));
}

// Whether a text begins with "IDE" or, in front of anything but a letter, with it in another case or
// with two letters swapped.
bool BeginsAsProtected(std::string_view text) {
    std::string begin(text.substr(0, 3));
    for (char& c : begin) {
        c = static_cast<char>(c & '\xDF');
    }
    return text.substr(0, 3) == "IDE" || ((begin == "IDE" || begin == "DIE" || begin == "IED") &&
                                          (text.size() == 3 || !IsLetter(text[3])));
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

// Whether a line may hold a text that was to be protected.
bool HoldsProtected(std::string_view text) {
    bool isFound = BeginsAsProtected(FromName(text)) || HasProtectedWord(text);
    FindNearProtected(text, [&](const StringsEntry&) { isFound = true; });
    return isFound;
}

// Adds the value of an entry, unless it only repeats the key, and what the key holds after the name,
// such as where a colon was meant as the equals sign.
void AddTexts(const StringsEntry& entry, SecretTexts& secrets) {
    if (entry.value != entry.key) {
        secrets.Add(entry.value);
    }
    std::string_view rest = FromName(entry.key);
    rest = FromName(rest.substr(NameAt(rest).size()));
    secrets.Add(TrimBlanks(rest.substr(0, rest.rfind('"'))));
}

// The texts of all protected entries, and of what was probably meant as one, wherever it is.
SecretTexts FindSecrets(std::string_view bytes) {
    SecretTexts secrets;
    std::string buffer;
    for (StringsReader line(bytes); line.Next();) {
        std::string_view text = line.Line().text;
        FindNearProtected(text, [&](const StringsEntry& entry) { AddTexts(entry, secrets); });
        while (!text.empty()) {  // and what follows each carriage return
            const std::string_view piece = text.substr(0, text.find('\r'));
            const auto entry = ReadEntry(piece, buffer);
            if (entry && BeginsAsProtected(FromName(entry->key))) {
                AddTexts(*entry, secrets);
            }
            text.remove_prefix(std::min(piece.size() + 1, text.size()));
        }
    }
    return secrets;
}

}  // namespace

std::vector<HostKey> ReadHostKeys(StringsReader section, std::string_view bytes) {
    const SecretTexts secrets = FindSecrets(bytes);
    const auto isSecret = [&](std::string_view text) {
        return secrets.Has(std::string(text)) || secrets.AreIn(text);
    };
    const StringsLine header = section.Line();
    std::vector<HostKey> keys = {{header.text.substr(0, header.text.find('=')), "", false, header}};
    std::unordered_set<std::string_view> known = {keys.front().key};
    while (section.Next() && !section.IsHeader()) {
        const auto entry = section.Entry();
        const std::string_view line = section.Line().text;
        if (!entry || IsCommentLike(line) || !known.insert(entry->key).second) {
            continue;
        }
        const std::string_view name = NameAt(FromName(entry->key));
        const bool isProtected = HoldsProtected(line);
        if ((isProtected && name != TrimBlanks(entry->key)) || isSecret(entry->key)) {
            const bool isNamed = BeginsAsProtected(name) && !isSecret(name);
            keys.push_back({isNamed ? name : std::string_view(), "", false, section.Line(), true});
        } else {
            const bool isShown = !isProtected && !isSecret(entry->value);
            keys.push_back(
                {entry->key, std::string(isShown ? entry->value : ""), isShown, section.Line()});
        }
    }
    return keys;
}
