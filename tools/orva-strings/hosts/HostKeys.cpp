#include "tools/orva-strings/hosts/HostKeys.h"

#include <unordered_set>

#include "tools/orva-strings/document/LineText.h"
#include "tools/orva-strings/document/MeantProtected.h"
#include "tools/orva-strings/document/SecretTexts.h"

std::vector<HostKey> ReadHostKeys(StringsReader section, std::string_view bytes) {
    const SecretTexts secrets = FindSecretTexts(bytes);
    const StringsLine header = section.Line();
    std::vector<HostKey> keys = {{header.text.substr(0, header.text.find('=')), "", false, header}};
    std::unordered_set<std::string_view> known = {keys.front().key};
    while (section.Next() && !section.IsHeader()) {
        const auto entry = section.Entry();
        const std::string_view line = section.Line().text;
        if (!entry || IsCommentLike(line) || !known.insert(entry->key).second) {
            continue;
        }
        const std::string_view name = MeantKey(entry->key);
        const bool isProtected = HoldsProtected(line);
        if ((isProtected && name != TrimBlanks(entry->key)) || secrets.AreShownBy(entry->key)) {
            const bool isNamed = BeginsAsProtected(name) && !secrets.AreShownBy(name);
            keys.push_back({isNamed ? name : std::string_view(), "", false, section.Line(), true});
        } else {
            const bool isShown = !isProtected && !secrets.AreShownBy(entry->value);
            keys.push_back(
                {entry->key, std::string(isShown ? entry->value : ""), isShown, section.Line()});
        }
    }
    return keys;
}
