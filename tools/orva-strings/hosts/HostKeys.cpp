#include "tools/orva-strings/hosts/HostKeys.h"

#include <cstddef>
#include <unordered_set>

#include "tools/orva-strings/document/LineText.h"
#include "tools/orva-strings/document/NearMisses.h"

namespace {

// Whether a line may hold a text that was to be protected.
bool HoldsProtected(const StringsReader& line) {
    const std::string_view text = line.Line().text;
    // Such as in a value whose closing quote was forgotten.
    const std::size_t key = text.find("IDE");
    bool isFound = key != std::string_view::npos && text.find('=', key) != std::string_view::npos;
    FindNearProtected(text, [&](const StringsEntry&) { isFound = true; });
    return isFound;
}

}  // namespace

std::vector<HostKey> ReadHostKeys(StringsReader section) {
    const StringsLine header = section.Line();
    std::vector<HostKey> keys = {{header.text.substr(0, header.text.find('=')), "", false, header}};
    std::unordered_set<std::string_view> known = {keys.front().key};
    while (section.Next() && !section.IsHeader()) {
        const auto entry = section.Entry();
        if (entry && !IsCommentLike(section.Line().text) && known.insert(entry->key).second) {
            const bool isShown = !HoldsProtected(section);
            keys.push_back(
                {entry->key, std::string(isShown ? entry->value : ""), isShown, section.Line()});
        }
    }
    return keys;
}
