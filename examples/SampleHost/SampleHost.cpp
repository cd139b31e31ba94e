// A minimal host: loads its texts in the requested language and shows them.
//
// Usage: SampleHost [LANGUAGE [FILE]]
//
// c++ SampleHost.cpp -o app/SampleHost $(pkg-config --cflags --libs OrvaLanguage)
// orva-strings protect -o app/Sample.strings Sample.strings
// In a bundle, the two stand elsewhere: see docs/building.md.
#include <cstdio>
#include <initializer_list>

#include <OrvaLanguage/OrvaLanguage.h>

int main(int argc, char** argv) {
    const char* const language = argc > 1 ? argv[1] : "";
    const char* const file = argc > 2 ? argv[2] : "Sample.strings";

    const int entries = ZuLoadStrings(language, file, nullptr);
    if (entries < 1) {
        std::fprintf(stderr, "SampleHost: no texts in %s\n", file);
        return 1;
    }
    std::printf("%d entries, section %s\n", entries, ZuGetLocalizedString("QVLANG"));
    for (const char* key :
         {"APP_TITLE", "MENU_OPEN", "MENU_QUIT", "ASK_SAVE", "IDE_LICENSE", "NOT_THERE"}) {
        const char* const text = ZuGetLocalizedString(key);
        std::printf("%-11s %s\n", key, text != nullptr ? text : "(no such text)");
    }
    return 0;
}
