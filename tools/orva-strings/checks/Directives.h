#ifndef ORVALANGUAGE_TOOLS_CHECKS_DIRECTIVES_H
#define ORVALANGUAGE_TOOLS_CHECKS_DIRECTIVES_H

#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tools/orva-strings/checks/FindingCollector.h"
#include "tools/orva-strings/checks/MeantReader.h"
#include "tools/orva-strings/checks/SectionKeys.h"
#include "tools/orva-strings/document/Directive.h"

// The directives in a file: comments that say "orva:" first, and then
//
//     disable-next-line RULE…    no findings of these rules about the next line
//     max-length NUMBER          limits the texts of the next line's key
//     language CODE              below a section's header: its language, for other programs
//
// The next line is the first one after it that is not a directive itself.
class Directives {
public:
    static constexpr auto kNoLimit = static_cast<std::size_t>(-1);

    // Takes each line of the file, in order. Adds findings about directives that can't be followed.
    void Read(const MeantReader& line, FindingCollector& findings);

    // The greatest number of characters that a key's text may have, or kNoLimit.
    std::size_t MaxLength(std::string_view key) const;

    // Removes the findings that are not wanted, and adds one for each directive that silenced
    // nothing.
    void Apply(FindingCollector& findings);

private:
    struct Silence {
        StringsLine directive;
        std::string_view section;
        std::string_view name;  // of the rule, in the directive
        Rule rule;
        std::size_t line;  // whose findings it silences
        bool isUsed;
    };

    void Follow(const Directive& directive, const StringsLine& line, FindingCollector& findings);
    void CheckLanguage(const Directive& directive, const StringsLine& line,
                       FindingCollector& findings);
    void CheckLimit(FindingCollector& findings) const;
    void AddSilences(std::string_view names, const StringsLine& line, FindingCollector& findings);

    std::vector<Silence> m_silences;
    std::size_t m_pending = 0;     // the first silence whose line is not known yet
    bool m_isBelowHeader = false;  // only comments and blank lines come between
    bool m_hasLanguage = false;    // the section
    std::unordered_map<std::string_view, std::string_view, HashWithoutCase, EqualWithoutCase>
        m_sections;  // by language code
    std::size_t m_nextLimit = kNoLimit;
    StringsLine m_limitLine = {};  // which sets it
    std::unordered_map<std::string_view, std::size_t> m_limits;
};

#endif
