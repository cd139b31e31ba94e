#include "tools/orva-strings/checks/CheckStrings.h"

#include <algorithm>
#include <optional>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "tools/orva-strings/checks/Directives.h"
#include "tools/orva-strings/checks/EntryChecks.h"
#include "tools/orva-strings/checks/FindingCollector.h"
#include "tools/orva-strings/checks/MeantReader.h"
#include "tools/orva-strings/checks/ProtectedChecks.h"
#include "tools/orva-strings/checks/SectionKeys.h"
#include "tools/orva-strings/checks/TranslationChecks.h"
#include "tools/orva-strings/cli/Nearest.h"
#include "tools/orva-strings/document/Encoding.h"
#include "tools/orva-strings/document/NearMisses.h"
#include "tools/orva-strings/document/SectionNames.h"

namespace {

constexpr auto kNoLine = static_cast<std::size_t>(-1);

// Whether a section's name probably has something in it that was not meant as a part of it.
bool HasMoreThanAName(std::string_view name) {
    return std::string_view("\"'=").find(name.front()) != std::string_view::npos ||
           name.back() == ';' || name.find_first_of("\"\r") != std::string_view::npos ||
           name.find(" #") != std::string_view::npos ||
           name.find(" //") != std::string_view::npos ||
           name.substr(0, std::string_view("“").size()) == "“";
}

// Checks one file.
class FileCheck {
public:
    FileCheck(std::string_view bytes, const CheckOptions& options)
        : m_bytes(bytes), m_options(options), m_findings(options.severities, options.areChosen) {}

    RuleFindings Run();

private:
    void ReadOutline();
    void CheckLines();
    void CheckLine(const MeantReader& line);
    void CheckHeader(const MeantReader& line);
    void CheckEntryOfSection(const MeantReader& line);
    void CheckLength(const MeantReader& line);
    bool IsRequired(std::string_view name) const;

    std::string_view m_bytes;
    const CheckOptions& m_options;
    FindingCollector m_findings;
    Directives m_directives;
    ProtectedChecks m_protected{m_options, m_findings};

    bool m_hasSection = false;
    std::size_t m_referenceLine = kNoLine;  // of its header
    SectionEntries m_reference;
    std::optional<EarlierFile> m_earlier;
    std::optional<TranslationChecks> m_translations;

    std::unordered_map<std::string_view, std::size_t, HashWithoutCase, EqualWithoutCase>
        m_sectionLines;  // by the name that the library compares
    SectionKeys m_keys;
    bool m_isTranslation = false;
};

RuleFindings FileCheck::Run() {
    if (IsUtf16(m_bytes)) {
        m_findings.AddForFile(Rule::kUtf16,
                              "no load finds a section, since the file is in UTF-16; save it in "
                              "UTF-8");
    } else if (HasOnlyCarriageReturns(m_bytes)) {
        m_findings.AddForFile(Rule::kCarriageReturn,
                              "the file is a single line to the library, since a carriage return "
                              "ends no line; end lines with a line feed");
    } else {
        ReadOutline();
        CheckLines();
        m_protected.CheckRest(m_bytes);
        m_directives.Apply(m_findings);
    }
    RuleFindings findings = std::move(m_findings.Findings());
    std::stable_sort(findings.begin(), findings.end(), [](const auto& a, const auto& b) {
        return !a.place || !b.place ? a.place.has_value() < b.place.has_value()
                                    : std::tie(a.place->line, a.place->column) <
                                          std::tie(b.place->line, b.place->column);
    });
    return findings;
}

// Finds the reference, the sections that are missing, and the directives.
void FileCheck::ReadOutline() {
    std::string_view referenceName;
    std::vector<std::string_view> names;
    std::vector<bool> isFound(m_options.required.size());
    for (MeantReader line(m_bytes); line.Next();) {
        if (line.Kind() == LineKind::kHeader) {
            m_hasSection = true;
            m_findings.EnterSection(line.SectionName());
            const std::string_view name = MeantSectionName(line.SectionName());
            names.push_back(name);
            if (m_referenceLine == kNoLine &&
                (m_options.reference.empty() || IsName(name, m_options.reference.c_str()))) {
                m_referenceLine = line.Line().number;
                m_reference = SectionEntries(line);
                referenceName = name;
            }
            for (std::size_t i = 0; i < isFound.size(); ++i) {
                isFound[i] = isFound[i] || IsName(name, m_options.required[i].c_str());
            }
        }
        m_directives.Read(line, m_findings);
    }
    if (!m_hasSection) {
        m_findings.AddForFile(Rule::kNoSection,
                              "no load finds a section; begin one with a line QVLANG=NAME");
        return;
    }
    const auto addMissing = [&](const std::string& name) {
        Nearest nearest(name);
        std::for_each(names.begin(), names.end(), [&](auto known) { nearest.Offer(known); });
        m_findings.AddForFile(Rule::kMissingSection,
                              "there is no section " + name +
                                  ", so a host that asks for it gets the first one; add it" +
                                  nearest.DidYouMean(),
                              name);
    };
    if (m_referenceLine == kNoLine) {
        addMissing(m_options.reference);
    }
    for (std::size_t i = 0; i < isFound.size(); ++i) {
        if (!isFound[i]) {
            addMissing(m_options.required[i]);
        }
    }
    if (m_options.base) {
        m_earlier.emplace(*m_options.base, referenceName);
        if (!m_earlier->HasReference()) {
            m_findings.AddForFile(Rule::kMissingSection,
                                  "the earlier file has no section " + std::string(referenceName) +
                                      ", so there is nothing to compare with; name another file",
                                  referenceName);
        }
    }
    m_translations.emplace(m_reference, m_earlier ? &*m_earlier : nullptr, m_options.keys,
                           m_findings);
}

bool FileCheck::IsRequired(std::string_view name) const {
    return std::any_of(m_options.required.begin(), m_options.required.end(),
                       [&](const std::string& required) { return IsName(name, required.c_str()); });
}

void FileCheck::CheckLines() {
    m_findings.EnterSection({});
    for (MeantReader line(m_bytes); line.Next();) {
        CheckLine(line);
    }
    if (m_isTranslation) {
        m_translations->LeaveSection();
    }
}

void FileCheck::CheckLine(const MeantReader& line) {
    if (line.Kind() == LineKind::kHeader) {
        CheckHeader(line);
    } else if (line.NearlyHeader()) {
        m_findings.Add(Rule::kNearHeader, line.Line(), line.Text(), {},
                       "this is nearly a header, but opens no section; write QVLANG=NAME, or "
                       "choose another key");
    }
    bool isLost = false;
    FindMisplaced(line.Lines(), [&](std::string_view /*key*/, Obstacle obstacle) {
        isLost = isLost || obstacle == Obstacle::kCarriageReturn;
    });
    CheckBytes(line.Line(), isLost, m_findings);
    switch (line.Kind()) {
        case LineKind::kConflictMarker:
            m_findings.Add(Rule::kConflictMarker, line.Line(), line.Text(), {},
                           "a merge was not finished here; keep one side and remove the markers");
            break;
        case LineKind::kEntry:
            CheckEntryOfSection(line);
            break;
        case LineKind::kComment:
            if (line.IsInSection() && line.Entry()) {
                m_findings.Add(Rule::kCommentedEntry, line.Line(), line.Text(), line.Key(),
                               "this comment is an entry with this key, since it has an equals "
                               "sign; write it without");
            }
            break;
        case LineKind::kShortEntry:
            if (line.IsInSection()) {
                const std::string_view key =
                    TrimBlanks(line.Text().substr(0, line.Text().find('=')));
                m_findings.Add(Rule::kShortKey, line.Line(), key, key,
                               "lookups answer null, since a key needs four bytes or more; choose "
                               "a longer one");
            }
            break;
        case LineKind::kOther:
            if (line.IsInSection()) {
                m_findings.Add(Rule::kUnreadLine, line.Line(), line.Text(), {},
                               "the library ignores this line; an entry has an equals sign after "
                               "its key, and a comment begins with #");
            }
            break;
        case LineKind::kBlank:
        case LineKind::kHeader:
            break;
    }
}

void FileCheck::CheckHeader(const MeantReader& line) {
    if (m_isTranslation) {
        m_translations->LeaveSection();
    }
    const std::string_view name = line.SectionName();
    const std::string_view meantName = MeantSectionName(name);
    m_findings.EnterSection(name);
    if (line.NearlyHeader()) {
        m_findings.Add(Rule::kNearHeader, line.Line(), line.Text(), {},
                       "this is nearly a header, but opens no section, so no host can load the "
                       "entries below as one; write QVLANG=" +
                           std::string(meantName));
    } else if (name.empty()) {
        m_findings.Add(Rule::kSectionName, line.Line(), line.Text(), {},
                       "the section has no name, so no host can ask for it; add one");
    } else if (name != meantName) {
        m_findings.Add(Rule::kSectionName, line.Line(), name, {},
                       "quotes and blanks around it are part of the section's name; write QVLANG=" +
                           std::string(meantName));
    } else if (HasMoreThanAName(name)) {
        m_findings.Add(Rule::kSectionName, line.Line(), name, {},
                       "everything up to the end of the line is part of the section's name; write "
                       "only the name");
    }
    const std::string_view compared = ComparedName(name);
    // Only what the library reads as a header can hide another.
    const bool isRead = IsHeader(line.Line().text);
    const auto first = m_sectionLines.find(compared);
    const bool isNew = first == m_sectionLines.end();
    if (isNew && isRead) {
        m_sectionLines.emplace(compared, line.Line().number);
    } else if (!isNew && isRead) {
        m_findings.Add(Rule::kRepeatedSection, line.Line(), line.Text(), {},
                       "this section can never be loaded, since the one on line " +
                           std::to_string(first->second + 1) +
                           " has the same name; move its entries there");
    }
    m_keys.Clear();
    m_isTranslation = isNew && m_referenceLine != kNoLine && line.Line().number != m_referenceLine;
    if (m_isTranslation) {
        m_translations->EnterSection(line.Line(), meantName, IsRequired(meantName));
    }
}

void FileCheck::CheckEntryOfSection(const MeantReader& line) {
    if (!line.IsInSection()) {
        const bool isWord = line.Key().find_first_of(" \t") == std::string_view::npos;
        if (m_hasSection && isWord) {
            m_findings.Add(Rule::kBeforeFirstSection, line.Line(), line.Text(), line.Key(),
                           "no section has this entry, since it comes before the first header; "
                           "move it");
        }
        return;
    }
    CheckEntry(line, m_findings);
    const bool isFirst = m_keys.Check(line, m_findings);
    const SectionEntries::Entry* const reference =
        m_isTranslation ? m_reference.Find(line.Key()) : nullptr;
    m_protected.Check(line, isFirst, reference != nullptr ? &reference->entry : nullptr);
    if (m_isTranslation && isFirst) {
        m_translations->Check(line);
    }
    CheckLength(line);
}

void FileCheck::CheckLength(const MeantReader& line) {
    const std::size_t limit = m_directives.MaxLength(line.Key());
    std::string buffer;
    if (const auto text = limit != Directives::kNoLimit
                              ? DecodedText(*line.Entry(), m_options.keys, buffer)
                              : std::nullopt) {
        if (const std::size_t length = CountCharacters(*text); length > limit) {
            m_findings.Add(Rule::kMaxLength, line.Line(), line.Entry()->value, line.Key(),
                           "the text has " + std::to_string(length) + " characters; the limit is " +
                               std::to_string(limit));
        }
    }
}

}  // namespace

RuleFindings CheckStrings(std::string_view bytes, const CheckOptions& options) {
    return FileCheck(bytes, options).Run();
}
