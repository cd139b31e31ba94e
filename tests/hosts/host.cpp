#include <cstdio>
#include <string>

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
    std::printf("%d entries, GREETING is %s\n", entries, found->value.data());
    return 0;
}
