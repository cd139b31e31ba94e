#include "tools/orva-strings/formats/Stats.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <iomanip>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "tools/orva-strings/checks/SectionKeys.h"
#include "tools/orva-strings/cli/Json.h"
#include "tools/orva-strings/cli/Printable.h"
#include "tools/orva-strings/document/NearHeader.h"
#include "tools/orva-strings/document/SectionNames.h"

namespace {

using CountsByName =
    std::unordered_map<std::string_view, Counts, HashWithoutCase, EqualWithoutCase>;

// Counts the findings in sections, the first of which begins on this line.
CountsByName CountBySection(const RuleFindings& findings, std::size_t firstLine) {
    CountsByName counts;
    for (const RuleFinding& finding : findings) {
        if (finding.place && finding.place->line >= firstLine) {
            counts[ComparedName(MeantSectionName(finding.section))].Add(finding.severity);
        }
    }
    return counts;
}

std::string Capitals(const char* name) {
    std::string capitals;
    for (; *name != '\0'; ++name) {
        capitals += static_cast<char>(*name - 'a' + 'A');
    }
    return capitals;
}

std::string Shown(const LanguageStats::Number& number) {
    return number.value ? std::to_string(*number.value) : "-";
}

// A name in Markdown, in which punctuation could have a meaning.
std::string Escaped(const std::string& name) {
    std::string escaped;
    for (const char c : PrintableName(name)) {
        if (std::ispunct(static_cast<unsigned char>(c)) != 0) {
            escaped += '\\';
        }
        escaped += c;
    }
    return escaped;
}

const char* MarkOf(const LanguageStats& language) {
    return language.isReference ? "  (reference)" : "";
}

std::string Total(const std::vector<FileStats>& files) {
    Counts counts;
    for (const FileStats& file : files) {
        counts.errors += file.counts.errors;
        counts.warnings += file.counts.warnings;
    }
    return Summary(counts, files.size());
}

}  // namespace

FileStats StatsOf(const std::string& file, const Translations& translations,
                  const RuleFindings& findings, bool isStaleKnown) {
    FileStats stats = {file, {}, CountsIn({{file, findings}})};
    CountsByName countsByName = CountBySection(findings, translations.languages[0].line);
    for (const Translation& language : translations.languages) {
        const std::string name(language.name);
        const Counts counts = countsByName[ComparedName(language.name)];
        const bool isReference = &language == &translations.Reference();
        LanguageStats own = {name, language.line, isReference, {}};
        const auto add = [&](const char* what, std::optional<std::size_t> value) {
            own.numbers.push_back({what, value});
        };
        add("entries", language.entries.All().size());
        add("percent", language.Percent());
        add("missing", language.CountOf(TextState::kMissing));
        const std::size_t stale = language.CountOf(TextState::kStale);
        add("stale", isStaleKnown ? std::optional(stale) : std::nullopt);
        add("empty", language.CountOf(TextState::kEmpty));
        add("same", language.CountOf(TextState::kSame));
        add("protected", language.ProtectedCount());
        add("errors", counts.errors);
        add("warnings", counts.warnings);
        stats.languages.push_back(std::move(own));
    }
    return stats;
}

void WriteStatsText(const std::vector<FileStats>& files, std::ostream& out) {
    std::size_t width = 0;  // of the names' column, which several files have
    if (files.size() > 1) {
        width = std::strlen("FILE");
        for (const FileStats& file : files) {
            width = std::max(width, Printable(file.file).size());
        }
    }
    const auto writeFile = [&](const std::string& name) {
        if (width > 0) {
            out << name << std::string(width - name.size(), ' ');
        }
    };
    writeFile("FILE");
    for (const LanguageStats::Number& number : files[0].languages[0].numbers) {
        out << "  " << Capitals(number.name);
    }
    out << "  LANGUAGE\n";
    for (const FileStats& file : files) {
        for (const LanguageStats& language : file.languages) {
            writeFile(Printable(file.file));
            for (const LanguageStats::Number& number : language.numbers) {
                const auto columns = static_cast<int>(std::strlen(number.name)) + 2;
                out << std::setw(columns) << Shown(number);
            }
            out << "  " << PrintableName(language.name) << MarkOf(language) << '\n';
        }
    }
    out << Total(files) << '\n';
}

void WriteStatsJson(const std::vector<FileStats>& files, std::ostream& out) {
    out << R"({"version":1,"files":[)";
    const char* beforeFile = "\n";
    for (const FileStats& file : files) {
        out << beforeFile << R"({"file":)" << JsonText(file.file);
        out << R"(,"errors":)" << file.counts.errors;
        out << R"(,"warnings":)" << file.counts.warnings << R"(,"languages":[)";
        const char* beforeLanguage = "\n";
        for (const LanguageStats& language : file.languages) {
            out << beforeLanguage << R"({"name":)" << JsonText(language.name);
            out << R"(,"line":)" << language.line + 1;
            out << R"(,"reference":)" << (language.isReference ? "true" : "false");
            for (const LanguageStats::Number& number : language.numbers) {
                out << ",\"" << number.name << "\":";
                out << (number.value ? Shown(number) : "null");
            }
            out << '}';
            beforeLanguage = ",\n";
        }
        out << "]}";
        beforeFile = ",\n";
    }
    out << "]}\n";
}

void WriteStatsMarkdown(const std::vector<FileStats>& files, std::ostream& out) {
    for (const FileStats& file : files) {
        out << "### " << Escaped(file.file) << "\n\n| language |";
        std::string rule = "\n| --- |";
        for (const LanguageStats::Number& number : file.languages[0].numbers) {
            out << ' ' << number.name << " |";
            rule += " ---: |";
        }
        out << rule << '\n';
        for (const LanguageStats& language : file.languages) {
            out << "| " << Escaped(language.name) << MarkOf(language) << " |";
            for (const LanguageStats::Number& number : language.numbers) {
                out << ' ' << Shown(number) << " |";
            }
            out << '\n';
        }
        out << '\n';
    }
    out << Total(files) << '\n';
}
