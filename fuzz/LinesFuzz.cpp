// The five line functions: each agrees with a naive reading.
//
// Input: a name, a line feed, a file.
#include <cstddef>
#include <cstdint>
#include <fstream>

#include <OrvaLanguage/KorString.h>

#include "fuzz/Check.h"
#include "fuzz/NaiveStrings.h"
#include "fuzz/NamedFile.h"
#include "support/TemporaryBundle.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TemporaryBundle bundle;
    const auto [name, file] = NamedFile(data, size);

    bundle.Write("x", file);
    std::ifstream stream(bundle.Resources() / "x");
    std::string line;
    for (const std::string& expected : naive::Lines(file)) {
        Check(KorString::GetLine(stream, line) && line == expected, "GetLine");
        Check(KorString::SearchLanguageKey(line, name.c_str()) ==
                  naive::IsHeader(line, "QVLANG=", name),
              "SearchLanguageKey");
        Check(KorString::SearchRegionKey(line, name.c_str()) ==
                  naive::IsHeader(line, "QVREGION=", name),
              "SearchRegionKey");
        Check(KorString::ConvertNewLine(&line) == naive::Expanded(line), "ConvertNewLine");
        std::string key = "untouched";
        std::string value = "untouched";
        const bool isEntry = KorString::GetLocalizedElement(line, &key, &value);
        const auto entry = naive::Entry(line);
        Check(isEntry == entry.has_value(), "GetLocalizedElement");
        Check(key == (entry ? entry->first : "untouched"), "the key");
        Check(value == (entry ? entry->second : "untouched"), "the value");
    }
    Check(!KorString::GetLine(stream, line), "the end of the file");
    return 0;
}
