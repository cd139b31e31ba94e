#include <cstdio>

#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>

int main() {
    const int entries = ZuLoadStrings("en", "Host.strings", nullptr);
    const auto all = KorString::gMapLocalizedStrings.Ordered();
    const auto* const found = KorString::gMapLocalizedStrings.Find("GREETING");
    if (all.size() != 2 || found != all.front() ||
        found->Value().data() != KorGetLocalizedString("GREETING")) {
        return 1;
    }
    std::printf("%d entries, GREETING is %s\n", entries, found->Value().data());
    return 0;
}
