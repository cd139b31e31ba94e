#include <algorithm>
#include <cstdio>
#include <string>
#if __cplusplus >= 202002L && defined(__has_include)
#if __has_include(<ranges>)
#include <ranges>
#endif
#endif

#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>

int main() {
    const int entries = ZuLoadStrings("en", "Host.strings", nullptr);
    const KorStringMap& table = KorString::gMapLocalizedStrings;
    const auto found = table.Find("GREETING");
    if (!found || found->value.data() != KorGetLocalizedString("GREETING")) {
        return 1;
    }
    std::string keys;
    for (auto& entry : table) {
        keys.append(entry.key).append(" ");
    }
    if (table.Size() != 2 || keys != "GREETING QVLANG " || table.LowerBound("H")->key != "QVLANG" ||
        table.LowerBound("R") != table.end() || table.Find("MISSING")) {
        return 1;
    }
    KorStringMap::Iterator at;  // belongs to no map
    at = table.LowerBound("H");
    if (at->key != "QVLANG") {
        return 1;
    }
#ifdef __cpp_lib_ranges
    static_assert(std::ranges::input_range<const KorStringMap>);
    if (std::ranges::count_if(table, [](auto& entry) { return entry.key == "QVLANG"; }) != 1) {
        return 1;
    }
#endif
    std::printf("%d entries, GREETING is %s\n", entries, found->value.data());
    return 0;
}
