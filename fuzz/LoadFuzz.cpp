// A load of any file in any language: the table is the same as that of a naive reading.
//
// Input: the language, a line feed, the file.
#include <cstddef>
#include <cstdint>

#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>

#include "fuzz/Check.h"
#include "fuzz/NaiveStrings.h"
#include "fuzz/NamedFile.h"
#include "support/TemporaryBundle.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TemporaryBundle bundle;
    const auto [language, file] = NamedFile(data, size);

    bundle.Write("x", file);
    const int count = ZuLoadStrings(language.c_str(), "x", bundle.Get());

    const auto expected = naive::Table(file, language);
    const KorStringMap& table = KorString::gMapLocalizedStrings;
    Check(count == static_cast<int>(expected.size()), "the number of entries");
    Check(table.Size() == expected.size(), "the size of the table");
    auto entry = expected.begin();
    for (const auto& [key, value] : table) {
        Check(key == entry->first && value == entry->second, "the entries");
        const bool isPlain = entry->first.find('\0') == std::string::npos;
        Check(!isPlain || table.Find(entry->first)->value.data() ==
                              KorGetLocalizedString(entry->first.c_str()),
              "the lookup");
        ++entry;
    }
    for (const auto& [key, value] : expected) {
        ZuGetLocalizedString(key.c_str());  // protected ones too, though hardly any decodes
    }
    return 0;
}
