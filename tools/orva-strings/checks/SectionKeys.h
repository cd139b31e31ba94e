#ifndef ORVALANGUAGE_TOOLS_CHECKS_SECTIONKEYS_H
#define ORVALANGUAGE_TOOLS_CHECKS_SECTIONKEYS_H

#include <cstddef>
#include <string_view>
#include <unordered_map>

#include "tools/orva-strings/checks/FindingCollector.h"
#include "tools/orva-strings/checks/MeantReader.h"

// The key as keys are compared where case does not count: that of ASCII letters.
struct HashWithoutCase {
    std::size_t operator()(std::string_view key) const;
};
struct EqualWithoutCase {
    bool operator()(std::string_view a, std::string_view b) const;
};

// The rules about the keys of one section.
class SectionKeys {
public:
    // Begins a section.
    void Clear();

    // Checks the key of an entry, in file order. Returns whether it is the first of its key, which
    // is the one that counts.
    bool Check(const MeantReader& line, FindingCollector& findings);

private:
    struct Entry {
        LineEntry entry;
        std::size_t line;
    };

    std::unordered_map<std::string_view, Entry> m_entries;
    std::unordered_map<std::string_view, std::string_view, HashWithoutCase, EqualWithoutCase>
        m_spellings;
};

#endif
