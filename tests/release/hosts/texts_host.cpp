// Uses every function of Texts.hpp.
#include <cstdio>
#include <cstring>

#include <OrvaLanguage/Texts.hpp>

int main(int, char** arguments) {
    const auto names = OrvaLanguage::Sections(arguments[1]);
    const auto loaded =
        OrvaLanguage::LoadPreferred({"de_AT.UTF-8"}, "Host.strings", nullptr, {{"Deutsch", "de"}});
    const auto copy = OrvaLanguage::CopyText("GREETING");
    if (!names || names->size() != 2 || loaded.isFallback || loaded.section != "Deutsch" || !copy ||
        OrvaLanguage::PreferredLanguages() != std::vector<std::string>{"fr"} ||
        std::strcmp(OrvaLanguage::TextOr("MISSING", "none"), "none") != 0) {
        return 1;
    }
    std::printf("%d entries, GREETING is %s\n", loaded.entries, copy->c_str());
    return 0;
}
