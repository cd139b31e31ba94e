#include "tools/orva-strings/document/FixedStrings.h"

#include <algorithm>
#include <deque>
#include <iterator>
#include <tuple>
#include <vector>

#include <OrvaLanguage/KorString.h>

#include "strings/Line.h"
#include "tools/orva-strings/Ascii.h"
#include "tools/orva-strings/document/Encoding.h"
#include "tools/orva-strings/document/LineText.h"
#include "tools/orva-strings/document/NearHeader.h"
#include "tools/orva-strings/document/PieceWriter.h"
#include "tools/orva-strings/document/SectionNames.h"

namespace {

// Whether one name comes before another, in an order in which names are equal that the library takes
// for equal.
bool IsNameBefore(std::string_view a, std::string_view b) {
    a = ComparedName(a);
    b = ComparedName(b);
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [](char x, char y) { return ToLower(x) < ToLower(y); });
}

std::string_view NameIn(std::string_view header) {
    return header.substr(header.find('=') + 1);
}

// The name of the section that a line was meant to open, if it was.
std::optional<std::string_view> MeantName(std::string_view text) {
    if (IsHeader(text)) {
        return MeantSectionName(NameIn(text));
    }
    const std::optional<NearHeader> near = FindNearHeader(text);
    return near && near->isUnmistakable ? std::optional(near->name) : std::nullopt;
}

// The names that several sections would have if all were as they were meant, in order.
std::vector<std::string_view> RepeatedNames(StringsReader lines) {
    std::vector<std::string_view> names;
    while (lines.Next()) {
        if (const auto name = MeantName(WithoutByteOrderMarks(lines.Line().text))) {
            names.push_back(*name);
        }
    }
    std::sort(names.begin(), names.end(), IsNameBefore);
    std::vector<std::string_view> repeated;
    for (std::size_t i = 1; i < names.size(); ++i) {
        if (!IsNameBefore(names[i - 1], names[i])) {
            repeated.push_back(names[i]);
        }
    }
    return repeated;
}

// Whether a line's text, in a section, makes an entry and was meant as one.
bool IsMeantAsEntry(std::string_view text) {
    return SplitEntry(text) && !IsCommentLike(text) && !FindNearHeader(text);
}

// An entry of a section.
struct Entry {
    std::size_t hash;  // of the key without blanks at its ends
    std::string_view text;
    std::size_t line;
    bool hasMark;  // a byte-order mark before it
};

// What tells an entry from others: the key without blanks at its ends, the key, and the value with
// whether it has escapes. Values that read alike are written alike, but for the quotes.
using Meaning = std::tuple<std::string_view, std::string_view, std::string_view, bool>;

Meaning MeaningOf(const Entry& entry) {
    const LineEntry parts = *SplitEntry(entry.text);
    const bool hasEscapes = parts.isQuoted && parts.value.find("\\n") != std::string_view::npos;
    return {TrimBlanks(parts.key), parts.key, parts.value, hasEscapes};
}

// Brings entries together that have the same key but for the blanks, and among them those of the
// same meaning.
bool IsEntryBefore(const Entry& a, const Entry& b) {
    if (a.hash != b.hash) {
        return a.hash < b.hash;
    }
    const Meaning meaningOfA = MeaningOf(a);
    const Meaning meaningOfB = MeaningOf(b);
    return meaningOfA != meaningOfB ? meaningOfA < meaningOfB : a.line < b.line;
}

std::string_view KeyOf(const Entry& entry) {
    return entry.text.substr(0, entry.text.find('='));
}

bool AreKeysAlike(const Entry& a, const Entry& b) {
    return a.hash == b.hash && TrimBlanks(KeyOf(a)) == TrimBlanks(KeyOf(b));
}

// Whether nothing is lost if an entry goes that means the same as an earlier one: beside its value,
// such as in a note, it has nothing that the other lacks.
bool IsRepeatedWhole(const Entry& earlier, const Entry& later) {
    std::string buffer;
    std::string otherBuffer;
    const StringsEntry kept = *ReadEntry(earlier.text, buffer);
    const StringsEntry gone = *ReadEntry(later.text, otherBuffer);
    const auto has = [](std::string_view first, std::string_view second) {
        return TrimBlanks(second).empty() || TrimBlanks(first) == TrimBlanks(second);
    };
    return has(kept.beforeQuote, gone.beforeQuote) && has(kept.afterQuote, gone.afterQuote);
}

bool Has(const std::vector<std::size_t>& sorted, std::size_t line) {
    return std::binary_search(sorted.begin(), sorted.end(), line);
}

// Goes through a file, section by section as they are once mended.
class Fixer {
public:
    Fixer(const StringsReader& lines, const std::function<void(const FixedLine&)>& visit)
        : m_repeatedNames(RepeatedNames(lines)), m_visit(visit) {}

    void Run(StringsReader lines) {
        for (bool hasLine = lines.Next(); hasLine;) {
            StringsReader section = lines;
            m_isInSection = SectionName(lines).has_value();
            std::size_t count = 0;
            m_entries.clear();
            do {
                AddEntry(lines);
                ++count;
                hasLine = lines.Next();
            } while (hasLine && !SectionName(lines));
            FindChanges();
            for (; count > 0; --count) {
                Visit(section);
                section.Next();
            }
        }
    }

private:
    static std::string_view TextOf(const StringsReader& lines) {
        return WithoutByteOrderMarks(lines.Line().text);
    }

    static bool IsMarked(const StringsReader& lines) {
        return TextOf(lines).size() != lines.Line().text.size();
    }

    bool IsRepeated(const std::optional<std::string_view>& name) const {
        return name && std::binary_search(m_repeatedNames.begin(), m_repeatedNames.end(), *name,
                                          IsNameBefore);
    }

    // The name of the section that a line opens once it is mended, if any. A name that would hide
    // another section, or be hidden by it, is not mended, and neither is a name that would change the
    // line's end.
    std::optional<std::string_view> SectionName(const StringsReader& lines) const {
        const std::string_view text = TextOf(lines);
        const std::optional<std::string_view> meant = MeantName(text);
        const bool canBeMended = meant && !meant->empty() && !IsRepeated(meant) &&
                                 NameIn(text).find('\r') == std::string_view::npos;
        if (canBeMended) {
            return meant;
        }
        const bool keepsMark = IsMarked(lines) && IsRepeated(meant);
        return IsHeader(text) && !keepsMark ? std::optional(NameIn(text)) : std::nullopt;
    }

    void AddEntry(const StringsReader& lines) {
        const std::string_view text = TextOf(lines);
        if (m_isInSection && IsMeantAsEntry(text)) {
            const std::string_view key = TrimBlanks(text.substr(0, text.find('=')));
            const std::size_t hash = std::hash<std::string_view>()(key);
            m_entries.push_back({hash, text, lines.Line().number, IsMarked(lines)});
        }
    }

    // Finds the lines that only repeat entries of the section, and those whose keys would be alike
    // without their blanks.
    void FindChanges() {
        m_duplicates.clear();
        m_keepingBlanks.clear();
        m_keepingMarks.clear();
        std::sort(m_entries.begin(), m_entries.end(), IsEntryBefore);
        for (auto begin = m_entries.begin(); begin != m_entries.end();) {
            const auto end = std::find_if(begin + 1, m_entries.end(), [&](const Entry& entry) {
                return !AreKeysAlike(*begin, entry);
            });
            if (KeyOf(*begin) != KeyOf(*(end - 1))) {
                std::transform(begin, end, std::back_inserter(m_keepingBlanks),
                               [](const Entry& entry) { return entry.line; });
            }
            // A mark that goes must not change which of several texts counts.
            if (MeaningOf(*begin) != MeaningOf(*(end - 1)) &&
                std::any_of(begin, end, [](const Entry& entry) { return entry.hasMark; })) {
                std::transform(begin, end, std::back_inserter(m_keepingMarks),
                               [](const Entry& entry) { return entry.line; });
                begin = end;
            }
            for (auto first = begin; begin != end; ++begin) {
                if (MeaningOf(*first) != MeaningOf(*begin)) {
                    first = begin;
                } else if (first != begin && IsRepeatedWhole(*first, *begin)) {
                    m_duplicates.push_back(begin->line);
                }
            }
        }
        std::sort(m_duplicates.begin(), m_duplicates.end());
        std::sort(m_keepingBlanks.begin(), m_keepingBlanks.end());
        std::sort(m_keepingMarks.begin(), m_keepingMarks.end());
    }

    void Visit(const StringsReader& lines) {
        const std::size_t line = lines.Line().number;
        FixedLine fixed = {lines.Line(), TextOf(lines), false};
        if (const auto name = SectionName(lines)) {
            m_text = KorString::LANG_STATEMENT;
            fixed.text = m_text += *name;
        } else if (m_isInSection && IsMeantAsEntry(fixed.text)) {
            fixed.isDuplicate = Has(m_duplicates, line);
            fixed.text = Has(m_keepingBlanks, line) ? fixed.text : WithoutKeyBlanks(fixed.text);
        }
        if (Has(m_keepingMarks, line) ||
            (IsMarked(lines) && IsRepeated(MeantName(TextOf(lines))))) {
            fixed.text = fixed.line.text;
        }
        m_visit(fixed);
    }

    // An entry without the blanks at its key's ends, unless the key would be too short or begin with
    // a byte-order mark.
    std::string_view WithoutKeyBlanks(std::string_view text) {
        const std::string_view key = text.substr(0, text.find('='));
        const std::string_view trimmed = TrimBlanks(key);
        if (trimmed.size() == key.size() || WithoutByteOrderMarks(trimmed) != trimmed) {
            return text;
        }
        m_text = trimmed;
        m_text += text.substr(key.size());
        return SplitEntry(m_text) ? m_text : text;
    }

    const std::vector<std::string_view> m_repeatedNames;
    const std::function<void(const FixedLine&)>& m_visit;
    // Of the present section.
    bool m_isInSection = false;
    std::deque<Entry> m_entries;  // unlike a vector, it grows without copies
    std::vector<std::size_t> m_duplicates;
    std::vector<std::size_t> m_keepingBlanks;
    std::vector<std::size_t> m_keepingMarks;
    std::string m_text;
};

}  // namespace

FixedStrings::FixedStrings(const std::string& bytes) : m_bytes(bytes) {
    if (HasOnlyCarriageReturns(bytes)) {
        m_converted = bytes;
        std::replace(m_converted.begin(), m_converted.end(), '\r', '\n');
        m_bytes = m_converted;
    }
}

std::optional<Finding> FixedStrings::Obstacle() const {
    if (IsUtf16(m_bytes)) {
        return Finding{Severity::kError, std::nullopt,
                       "the file is in UTF-16, which the library can't read: convert it to UTF-8"};
    }
    StringsReader lines(m_bytes);
    while (lines.Next()) {
        if (IsConflictMarker(WithoutByteOrderMarks(lines.Line().text))) {
            return Finding{Severity::kError, lines.Line().number,
                           "git left a conflict here: resolve it first"};
        }
    }
    return std::nullopt;
}

void FixedStrings::VisitLines(const std::function<void(const FixedLine&)>& visit) const {
    const StringsReader lines(m_bytes);
    Fixer(lines, visit).Run(lines);
}

void FixedStrings::WriteInPieces(const TakePiece& take) const {
    PieceWriter writer(take);
    VisitLines([&](const FixedLine& line) {
        if (!line.isDuplicate) {
            writer.Write(line.text);
            writer.Write(line.line.ending);
        }
    });
    writer.Finish();
}
