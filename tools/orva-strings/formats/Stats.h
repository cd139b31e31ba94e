#ifndef ORVALANGUAGE_TOOLS_FORMATS_STATS_H
#define ORVALANGUAGE_TOOLS_FORMATS_STATS_H

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "tools/orva-strings/checks/RuleFinding.h"
#include "tools/orva-strings/checks/Translations.h"
#include "tools/orva-strings/formats/Counts.h"

// How far a language of a file is.
struct LanguageStats {
    std::string name;
    std::size_t line;  // its header's, from 0
    bool isReference;
    struct Number {
        const char* name;
        std::optional<std::size_t> value;  // nothing if it is not known
    };
    std::vector<Number> numbers;
};

struct FileStats {
    std::string file;  // its name, as given
    std::vector<LanguageStats> languages;
    Counts counts;  // of all findings in the file
};

// isStaleKnown says whether there was an earlier state of the file to compare with. Findings about
// several sections of one name count together.
FileStats StatsOf(const std::string& file, const Translations& translations,
                  const RuleFindings& findings, bool isStaleKnown);

// Each writes the numbers of at least one file in one format. Text and Markdown escape names by
// Printable.
void WriteStatsText(const std::vector<FileStats>& files, std::ostream& out);
void WriteStatsJson(const std::vector<FileStats>& files, std::ostream& out);
void WriteStatsMarkdown(const std::vector<FileStats>& files, std::ostream& out);

#endif
