#include "tools/orva-strings/formats/Stats.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "tools/orva-strings/cli/UsageError.h"
#include "tools/orva-strings/commands/TranslationsCommand.h"

namespace {

constexpr Argument kStatsFormat = {
    "--format",          "FORMAT", "The form of the output; text by default",
    Role::kText,         false,    nullptr,
    "text|json|markdown"};

constexpr Argument kFailUnder = {"--fail-under", "PERCENT",
                                 "End with exit status 1 if less of a language is translated"};

// The number that --fail-under names. Throws UsageError if it is not a percentage.
std::size_t PercentOf(const std::string& text) {
    const bool isNumber = !text.empty() && text.size() <= 3 &&
                          text.find_first_not_of("0123456789") == std::string::npos;
    const std::size_t percent = isNumber ? std::stoul(text) : 101;
    if (percent > 100) {
        throw UsageError("--fail-under: '" + text + "' is not a whole number from 0 to 100");
    }
    return percent;
}

class Stats : public TranslationsCommand {
public:
    Stats()
        : TranslationsCommand({"stats",
                               "Show how far each language is",
                               {"stats --format markdown Source.strings",
                                "stats --fail-under 90 Source.strings"}}) {}

    void Declare(Arguments& arguments) override {
        TranslationsCommand::Declare(arguments);
        arguments.Add(kStatsFormat, m_format);
        arguments.Add(kFailUnder, m_failUnder);
    }

    ExitStatus Run(const Console& console) override {
        m_limit = PercentOf(m_failUnder);
        return TranslationsCommand::Run(console);
    }

private:
    ExitStatus Take(const TranslatedFile& file, const Console& console) override {
        m_stats.push_back(StatsOf(file.name, file.translations, file.findings, file.hasBase));
        Findings findings;
        for (const Translation& language : file.translations.languages) {
            const std::size_t total = language.states.size();
            const std::size_t translated = language.TranslatedCount();
            if (translated * 100 < m_limit * total) {
                findings.push_back({Severity::kError, language.line,
                                    std::string(language.name) + ": " + std::to_string(translated) +
                                        " of " + std::to_string(total) +
                                        " texts are translated, which is less than " +
                                        std::to_string(m_limit) + " %"});
            }
        }
        return console.Report(findings, file.name);
    }

    void Write(const Console& console) override {
        const auto write = m_format == "json"       ? WriteStatsJson
                           : m_format == "markdown" ? WriteStatsMarkdown
                                                    : WriteStatsText;
        write(m_stats, console.Out());
    }

    std::string m_format = "text";
    std::string m_failUnder = "0";
    std::size_t m_limit = 0;
    std::vector<FileStats> m_stats;
};

}  // namespace

std::unique_ptr<Command> MakeStats() {
    return std::make_unique<Stats>();
}
