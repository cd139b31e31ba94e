// C++17: c++ -std=c++17 host.cpp -o Host $(pkg-config --cflags --libs OrvaLanguage)
#include <cstdio>

#include <OrvaLanguage/Texts.hpp>

int main() {
    using namespace OrvaLanguage;
    if (LoadPreferred(PreferredLanguages(), "Sample.strings", nullptr).entries < 1) {
        std::fputs("Host: no texts\n", stderr);
        return 1;
    }
    std::puts(TextOr("MENU_OPEN", "Open"));
    std::puts(CopyText("MENU_NEW").value_or("New").c_str());  // the file lacks this one
}
