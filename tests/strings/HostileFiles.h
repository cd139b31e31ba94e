#ifndef ORVALANGUAGE_TESTS_STRINGS_HOSTILEFILES_H
#define ORVALANGUAGE_TESTS_STRINGS_HOSTILEFILES_H

#include <algorithm>
#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>
#include <gtest/gtest.h>

#include "support/TemporaryBundle.h"
#include "tests/support/Sanitizers.h"

// Sanitizers take about ten times as long, as does libc++, which reads a line byte by byte. Sizes
// are scaled down there.
#ifdef _LIBCPP_VERSION
constexpr std::size_t kPart = 10;
#else
constexpr std::size_t kPart = kHasSanitizer ? 10 : 1;
#endif

constexpr std::size_t kMebi = std::size_t{1} << 20U;

using Table = std::map<std::string, std::string>;
using Sizes = std::vector<std::size_t>;

inline Table LoadedTable() {
    Table table;
    for (const auto& [key, value] : KorString::gMapLocalizedStrings) {
        table.emplace(key, value);
    }
    return table;
}

// Whether the table is exactly this one. Returns a bool because a failed comparison would print
// large tables.
inline bool TableIs(const Table& expected) {
    const KorStringMap& table = KorString::gMapLocalizedStrings;
    return table.Size() == expected.size() &&
           std::all_of(expected.begin(), expected.end(), [&](const auto& each) {
               // NOLINTNEXTLINE(clang-analyzer-core.CallAndMessage): a guess, through a map
               const auto entry = table.Find(each.first);
               return entry && entry->value == each.second;
           });
}

class HostileFiles : public ::testing::Test {
protected:
    // Each test starts with an empty table.
    HostileFiles() {
        m_bundle.Write("x", "");
        Load("en");
    }

    std::string Path(const std::string& name) const { return m_bundle.Resources() / name; }

    int Load(const char* language, const std::string& name = "x") const {
        return ZuLoadStrings(language, name.c_str(), m_bundle.Get());
    }

    // Writes the file, loads it, and returns whether that gave exactly these entries.
    bool Loads(const std::string& file, const char* language, const Table& expected) const {
        m_bundle.Write("x", file);
        return Load(language) == static_cast<int>(expected.size()) && TableIs(expected);
    }

    TemporaryBundle m_bundle;
};

// Two languages in files longer than a stream's buffer, so that a load reads several times.
inline std::string LongFile(const std::string& mark) {
    std::string file;
    for (const char* language : {"en", "de"}) {
        file += std::string("QVLANG=") + language + "\n";
        for (int i = 0; i < 1000; ++i) {
            file += "KEY_" + std::to_string(i) + "=\"" + mark + " " + language + "\"\n";
        }
    }
    return file;
}

#endif
