#include "tools/orva-strings/document/SyncedStrings.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "strings/Line.h"
#include "tools/orva-strings/document/Directive.h"
#include "tools/orva-strings/document/FindSection.h"
#include "tools/orva-strings/document/FixedStrings.h"
#include "tools/orva-strings/document/LineText.h"
#include "tools/orva-strings/document/LostHeader.h"
#include "tools/orva-strings/document/PieceWriter.h"
#include "tools/orva-strings/document/SectionNames.h"

namespace {

using SyncedLines = std::vector<SyncedLine>;

// Whether a line was meant as an entry of a section, and is one.
bool IsMeantAsEntry(const StringsReader& lines) {
    const std::string_view text = lines.Line().text;
    return lines.IsInSection() && !lines.IsHeader() && SplitEntry(text) && !IsCommentLike(text);
}

// The key that was meant.
std::string_view KeyOf(const SyncedLine& line) {
    return TrimBlanks(SplitEntry(line.text)->key);
}

bool IsBlank(const SyncedLine& line) {
    return TrimBlanks(line.text).empty();
}

SyncedLine LineOf(const StringsReader& lines) {
    const StringsLine& line = lines.Line();
    return {line.number, line.text, line.ending, IsMeantAsEntry(lines)};
}

// The order of the reference's keys: the first has rank 1.
class Reference {
public:
    // Reads the section at whose header the reader is.
    explicit Reference(StringsReader section) : m_header(section.Line()) {
        while (section.Next() && !section.IsHeader()) {
            const SyncedLine line = LineOf(section);
            if (line.isEntry && m_ranks.try_emplace(KeyOf(line), m_entries.size() + 1).second) {
                m_entries.push_back(line);
            }
        }
    }

    const StringsLine& Header() const { return m_header; }
    const SyncedLines& Entries() const { return m_entries; }

    // The rank of a key; nothing if the reference lacks it.
    std::optional<std::size_t> RankOf(std::string_view key) const {
        const auto found = m_ranks.find(key);
        return found != m_ranks.end() ? std::optional(found->second) : std::nullopt;
    }

private:
    StringsLine m_header;
    SyncedLines m_entries;
    std::unordered_map<std::string_view, std::size_t> m_ranks;
};

// Lines of a section that stay together: an entry with the lines above and below that belong to it.
struct Block {
    std::size_t rank;
    std::size_t begin;
    std::size_t end;
};

// Puts the lines of one section in order.
class SectionSync {
public:
    // The first line is the header.
    SectionSync(const Reference& reference, const SyncOptions& options, const SyncedLines& section)
        : m_reference(reference), m_options(options), m_section(section) {
        FindBlocks();
    }

    // Adds the section's new lines to lines, and what keeps it from being synced.
    void Run(SyncedLines& lines, std::size_t& pruned, Findings& obstacles) {
        const std::size_t headEnd = m_blocks.empty() ? m_rest : m_blocks.front().begin;
        SyncedLines filled;
        if (m_options.isFilled) {
            filled = MissingEntries();
        }
        std::stable_sort(m_blocks.begin(), m_blocks.end(),
                         [](const Block& a, const Block& b) { return a.rank < b.rank; });
        SyncedLines synced(m_section.begin(), At(headEnd));
        auto missing = filled.begin();
        for (const Block& block : m_blocks) {
            for (; missing != filled.end() && RankOf(*missing) < block.rank; ++missing) {
                synced.push_back(*missing);
            }
            const auto isExtra = [&](const SyncedLine& line) {
                return line.isEntry && RankOf(line) == 0;
            };
            const bool isPruned =
                m_options.isPruned && std::any_of(At(block.begin), At(block.end), isExtra);
            pruned += isPruned ? 1 : 0;
            std::for_each(At(block.begin), At(block.end), [&](const SyncedLine& line) {
                // A directive would be followed for the next entry.
                if (!isPruned || !(line.isEntry || ReadDirective(line.text))) {
                    synced.push_back(line);
                }
            });
        }
        synced.insert(synced.end(), missing, filled.end());
        synced.insert(synced.end(), At(m_rest), m_section.end());
        FindOtherAnswers(synced, obstacles);
        lines.insert(lines.end(), synced.begin(), synced.end());
    }

private:
    SyncedLines::const_iterator At(std::size_t line) const {
        return m_section.begin() + static_cast<std::ptrdiff_t>(line);
    }

    // The rank of an entry's key; 0 if the reference lacks it.
    std::size_t RankOf(const SyncedLine& entry) const {
        return m_reference.RankOf(KeyOf(entry)).value_or(0);
    }

    // Divides the section: comments and blank lines belong to the entry below them, other lines to
    // the entry or header right above, if there is one. What a blank line parts from the first entry,
    // and what is above the section's language, belongs to the header, and what follows the last entry
    // to the section's end.
    void FindBlocks() {
        std::unordered_map<std::string_view, std::size_t> extraRanks;
        std::size_t rank = 0;
        bool isRightBelow = true;
        m_rest = HeaderEnd();
        for (std::size_t i = 1; i < m_section.size(); ++i) {
            const SyncedLine& line = m_section[i];
            if (line.isEntry) {
                if (const auto known = m_reference.RankOf(KeyOf(line))) {
                    rank = *known;
                } else if (!m_options.isPruned) {
                    // The entry stays behind the one that it follows, and so do its repetitions,
                    // since the first one counts.
                    rank = extraRanks.try_emplace(KeyOf(line), rank).first->second;
                }
                m_blocks.push_back({rank, m_blocks.empty() ? FirstBegin(i) : m_rest, i + 1});
                m_rest = i + 1;
                isRightBelow = true;
            } else if (isRightBelow && !IsBlank(line) && !IsCommentLike(line.text)) {
                m_rest = i + 1;
                if (!m_blocks.empty()) {
                    m_blocks.back().end = m_rest;
                }
            } else {
                isRightBelow = false;
            }
        }
    }

    // Where the lines end that are right below the header with the section's language.
    std::size_t HeaderEnd() const {
        std::size_t end = 1;
        for (std::size_t i = 1; i < m_section.size(); ++i) {
            const SyncedLine& line = m_section[i];
            if (line.isEntry || !(IsBlank(line) || IsCommentLike(line.text))) {
                break;
            }
            const auto directive = ReadDirective(line.text);
            if (directive && directive->name == kLanguageDirective) {
                end = i + 1;
            }
        }
        return end;
    }

    // Where the lines begin that belong to the first entry.
    std::size_t FirstBegin(std::size_t entry) const {
        std::size_t begin = entry;
        while (begin > m_rest && !IsBlank(m_section[begin - 1])) {
            --begin;
        }
        while (begin > m_rest && IsBlank(m_section[begin - 1])) {
            --begin;
        }
        return begin;
    }

    // The reference's entries whose keys the section lacks, but those without a text.
    SyncedLines MissingEntries() const {
        std::unordered_set<std::string_view> keys;
        for (const SyncedLine& line : m_section) {
            if (line.isEntry) {
                keys.insert(KeyOf(line));
            }
        }
        SyncedLines missing;
        for (const SyncedLine& line : m_reference.Entries()) {
            if (keys.count(KeyOf(line)) == 0 && !SplitEntry(line.text)->value.empty()) {
                missing.push_back({std::nullopt, line.text, m_reference.Header().ending, true});
            }
        }
        return missing;
    }

    // Finds the comments that are entries, too, and whose key would be answered with another text: of
    // several entries of one key, the first counts.
    void FindOtherAnswers(const SyncedLines& synced, Findings& obstacles) const {
        std::unordered_map<std::string_view, std::string_view> answers;
        for (const SyncedLine& line : m_section) {
            if (const auto entry = SplitEntry(line.text)) {
                answers.try_emplace(entry->key, line.text);
            }
        }
        std::string before;
        std::string now;
        for (const SyncedLine& line : synced) {
            const auto entry = SplitEntry(line.text);
            const auto answer = entry ? answers.find(entry->key) : answers.end();
            if (answer == answers.end()) {
                continue;
            }
            if (ReadEntry(answer->second, before)->value != ReadEntry(line.text, now)->value) {
                obstacles.push_back(
                    {Severity::kError, line.before,
                     std::string(entry->key) +
                         ": this comment is an entry, since it has an equals sign, and would be "
                         "moved before another one of its key; write it without"});
            }
            answers.erase(answer);
        }
    }

    const Reference& m_reference;
    const SyncOptions& m_options;
    const SyncedLines& m_section;
    std::vector<Block> m_blocks;
    std::size_t m_rest = 0;  // where the lines begin that belong to no block and follow them all
};

bool IsChosen(std::string_view name, const std::vector<std::string>& languages) {
    return languages.empty() ||
           std::any_of(languages.begin(), languages.end(),
                       [&](const std::string& language) { return IsName(name, language.c_str()); });
}

// Marks the lines that are not among the most that can stay where they are, in the order of before.
void MarkMoved(SyncedLines& lines) {
    constexpr auto kNone = static_cast<std::size_t>(-1);
    std::vector<std::size_t> lasts;  // the line with which the best run of each length ends
    std::vector<std::size_t> previous(lines.size(), kNone);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        lines[i].hasMoved = true;
        if (lines[i].before) {
            const auto place = std::lower_bound(
                lasts.begin(), lasts.end(), lines[i].before,
                [&](std::size_t last, const auto& line) { return lines[last].before < line; });
            previous[i] = place != lasts.begin() ? *(place - 1) : kNone;
            if (place == lasts.end()) {
                lasts.push_back(i);
            } else {
                *place = i;
            }
        }
    }
    for (std::size_t i = lasts.empty() ? kNone : lasts.back(); i != kNone; i = previous[i]) {
        lines[i].hasMoved = false;
    }
}

// Ends the lines that were the file's last and no longer are. The others keep their endings.
void EndLines(SyncedLines& lines, std::string_view ending) {
    for (std::size_t i = 0; i + 1 < lines.size(); ++i) {
        if (lines[i].ending.empty() || lines[i].ending.back() != '\n') {
            lines[i].ending = ending;
        }
    }
}

}  // namespace

SyncedStrings::SyncedStrings(const std::string& bytes, const SyncOptions& options) {
    if (const auto obstacle = FixedStrings(bytes).Obstacle()) {
        m_obstacles.push_back(*obstacle);
        return;
    }
    const auto find = [&](const std::string& language) {
        Findings findings;
        auto section = FindSection(bytes, language, false, findings);
        m_obstacles.insert(m_obstacles.end(), findings.begin(), findings.end());
        return section;
    };
    const std::optional<StringsReader> header = find(options.reference);
    std::for_each(options.languages.begin(), options.languages.end(), find);
    if (HasError(m_obstacles)) {
        return;
    }
    const Reference reference(*header);
    SyncedLines section;
    bool isSynced = false;
    const auto finish = [&] {
        if (isSynced) {
            SectionSync(reference, options, section).Run(m_lines, m_pruned, m_obstacles);
        } else {
            m_lines.insert(m_lines.end(), section.begin(), section.end());
        }
        section.clear();
    };
    SectionNames names;
    for (StringsReader lines(bytes); lines.Next(); section.push_back(LineOf(lines))) {
        FindLostHeaders(lines, m_obstacles);
        if (lines.IsHeader()) {
            finish();
            // No load can reach a section whose name an earlier one has.
            isSynced = names.Add(lines.SectionName()) &&
                       lines.Line().number != reference.Header().number &&
                       IsChosen(lines.SectionName(), options.languages);
        }
    }
    finish();
    if (HasError(m_obstacles)) {
        m_lines.clear();
    } else {
        EndLines(m_lines, header->Line().ending);
        MarkMoved(m_lines);
    }
}

void SyncedStrings::WriteInPieces(const TakePiece& take) const {
    PieceWriter writer(take);
    for (const SyncedLine& line : m_lines) {
        writer.Write(line.text);
        writer.Write(line.ending);
    }
    writer.Finish();
}
