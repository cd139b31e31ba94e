#include "tools/orva-strings/document/SectionList.h"

#include <algorithm>
#include <vector>

#include "protection/ProtectedForm.h"
#include "tools/orva-strings/document/LostHeader.h"
#include "tools/orva-strings/document/NoSection.h"
#include "tools/orva-strings/document/SectionNames.h"
#include "tools/orva-strings/document/StringsReader.h"

namespace {

// Goes to the next header. Returns false if no line is left. Calls visit at each line before.
template <typename Visit>
bool NextHeader(StringsReader& lines, const Visit& visit) {
    while (lines.Next()) {
        if (lines.IsHeader()) {
            return true;
        }
        visit();
    }
    return false;
}

}  // namespace

Findings ListSections(std::string_view bytes,
                      const std::function<void(const SectionSummary&)>& take) {
    Findings findings;
    SectionNames names;
    std::vector<std::string_view> keys;
    StringsReader lines(bytes);
    const auto visit = [&] {
        FindLostHeaders(lines, findings);
        if (const auto entry = lines.Entry()) {
            keys.push_back(entry->key);
        }
    };
    bool isLeft = NextHeader(lines, visit);
    if (!isLeft) {
        findings.push_back(NoSection());
    }
    while (isLeft) {
        const std::size_t line = lines.Line().number;
        const std::string_view name = lines.SectionName();
        keys = {"QVLANG"};
        isLeft = NextHeader(lines, visit);
        std::sort(keys.begin(), keys.end());
        keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
        const auto protectedKeys =
            std::count_if(keys.begin(), keys.end(),
                          [](std::string_view key) { return IsProtectedKey(key.data()); });
        take({name, line, keys.size(), static_cast<std::size_t>(protectedKeys), names.Add(name)});
    }
    return findings;
}
