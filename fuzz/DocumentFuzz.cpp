// The tool's document: a file that is read and written back is the same; a changed value reads back
// the same, and every other line keeps its bytes.
//
// Input: a byte that chooses the entry, a new value, a NUL, the file.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/Check.h"
#include "fuzz/TwoInputs.h"
#include "tools/orva-strings/document/StringsDocument.h"

namespace {

struct Entry {
    StringsLine line;
    std::string key;
    std::string value;
};

// The entries of a file, which must outlive them.
std::vector<Entry> Entries(const std::string& file) {
    std::vector<Entry> entries;
    StringsReader lines(file);
    while (lines.Next()) {
        if (const auto entry = lines.Entry()) {
            entries.push_back({lines.Line(), std::string(entry->key), std::string(entry->value)});
        }
    }
    return entries;
}

// The offset of a line's first byte.
std::size_t StartOf(const std::string& bytes, std::size_t line) {
    std::size_t start = 0;
    for (; line > 0; --line) {
        start = bytes.find('\n', start) + 1;
    }
    return start;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const auto [value, file] = TwoInputs(data + 1, size - 1);

    StringsDocument document(file);
    Check(document.Bytes() == file, "a file comes out as it went in");
    const std::vector<Entry> before = Entries(file);
    if (before.empty()) {
        return 0;
    }
    const std::size_t chosen = data[0] % before.size();
    const std::size_t line = before[chosen].line.number;
    const bool isSet = document.SetValue(before[chosen].line, value).has_value();
    const std::string changed = document.Bytes();
    Check(document.IsChanged() == (changed != file), "it knows whether it is changed");
    if (!isSet) {
        Check(changed == file, "a value that can't be written changes nothing");
        return 0;
    }

    const std::size_t start = StartOf(file, line);
    const std::string rest = file.substr(std::min(file.find('\n', start), file.size()));
    Check(changed.compare(0, start, file, 0, start) == 0, "the lines before");
    Check(changed.size() >= start + rest.size() &&
              changed.compare(changed.size() - rest.size(), rest.size(), rest) == 0,
          "the lines after");
    const std::vector<Entry> after = Entries(changed);
    Check(after.size() == before.size(), "the number of entries");
    for (std::size_t i = 0; i < after.size(); ++i) {
        Check(after[i].line.number == before[i].line.number && after[i].key == before[i].key,
              "the keys");
        Check(after[i].value == (i == chosen ? value : before[i].value), "the values");
    }
    return 0;
}
