#include "tools/orva-strings/checks/TranslationChecks.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "tools/orva-strings/checks/Placeholders.h"
#include "tools/orva-strings/checks/ProtectedChecks.h"
#include "tools/orva-strings/cli/Nearest.h"

namespace {

constexpr char kBlanks[] = " \t\r\n";

// Up to this many extra keys in a section are taken for misspelled ones. More are too many to compare
// with all that are missing.
constexpr std::size_t kMostGuesses = 20;

// What is at one end of a text: so many line breaks or, without any, whether there are blanks. How
// many blanks there are may be a matter of alignment.
std::size_t End(std::string_view blanks) {
    const auto lines = static_cast<std::size_t>(std::count(blanks.begin(), blanks.end(), '\n'));
    return lines > 0 ? lines + 1 : blanks.empty() ? 0 : 1;
}

// Whether a text ends with a character of East Asian scripts, whose punctuation needs no blank.
bool EndsWide(std::string_view text) {
    return text.size() >= 3 && text[text.size() - 3] >= '\xE3' && text[text.size() - 3] <= '\xEF';
}

// Whether the blanks or line breaks at the ends of a text differ from those of the reference.
bool HasOtherEnds(std::string_view reference, std::string_view text) {
    const auto start = [](std::string_view of) {
        return of.substr(0, std::min(of.find_first_not_of(kBlanks), of.size()));
    };
    const auto rest = [](std::string_view of) {
        return of.substr(of.find_last_not_of(kBlanks) + 1);
    };
    const std::size_t end = End(rest(text));
    return End(start(reference)) != End(start(text)) ||
           (End(rest(reference)) != end && !(end == 0 && EndsWide(text)));
}

// The kind of punctuation with which a text ends, or 0.
char EndPunctuation(std::string_view text) {
    constexpr std::array<std::pair<std::string_view, char>, 15> kMarks = {{{"...", 'e'},
                                                                           {"…", 'e'},
                                                                           {".", '.'},
                                                                           {"。", '.'},
                                                                           {"।", '.'},
                                                                           {"։", '.'},
                                                                           {"۔", '.'},
                                                                           {"?", '?'},
                                                                           {"？", '?'},
                                                                           {"؟", '?'},
                                                                           {"!", '!'},
                                                                           {"！", '!'},
                                                                           {":", ':'},
                                                                           {"：", ':'},
                                                                           {";", ';'}}};
    text = text.substr(0, text.find_last_not_of(kBlanks) + 1);
    const auto* const found = std::find_if(kMarks.begin(), kMarks.end(), [&](const auto& mark) {
        return text.size() >= mark.first.size() &&
               text.substr(text.size() - mark.first.size()) == mark.first;
    });
    return found != kMarks.end() ? found->second : '\0';
}

// What differs between the placeholders of two texts, or an empty text.
std::string PlaceholderDifference(std::string_view reference, std::string_view text) {
    const Placeholders wanted = FindPlaceholders(reference);
    const Placeholders found = FindPlaceholders(text);
    if (wanted.isTime) {
        return "";
    }
    const std::string missing = Missing(wanted, found);
    const std::string added = Missing(found, wanted);
    if (missing.empty() && added.empty()) {
        return "";
    }
    return "the reference has " + (missing.empty() ? "no " + added : missing) +
           (missing.empty() ? ""
            : added.empty() ? ", which is missing here"
                            : ", but this text has " + added);
}

}  // namespace

SectionEntries::SectionEntries(MeantReader section) {
    while (section.Next() && section.Kind() != LineKind::kHeader) {
        if (section.Kind() != LineKind::kEntry) {
            continue;
        }
        const LineEntry& entry = *section.Entry();
        const auto [found, isFirst] = m_indices.try_emplace(section.Key(), m_entries.size());
        if (isFirst) {
            m_entries.push_back({section.Key(), entry, section.Line().number});
        } else if (Entry& first = m_entries[found->second];
                   first.entry.key != section.Key() && entry.key == section.Key()) {
            // The library finds this one, not the one with blanks.
            first.entry = entry;
            first.line = section.Line().number;
        }
    }
}

SectionEntries::Entry* SectionEntries::Find(std::string_view key) {
    const auto found = m_indices.find(key);
    return found != m_indices.end() ? &m_entries[found->second] : nullptr;
}

const SectionEntries::Entry* SectionEntries::Find(std::string_view key) const {
    const auto found = m_indices.find(key);
    return found != m_indices.end() ? &m_entries[found->second] : nullptr;
}

EarlierFile::EarlierFile(std::string_view bytes, std::string_view reference) : m_bytes(bytes) {
    for (MeantReader line(bytes); line.Next();) {
        if (line.Kind() == LineKind::kHeader) {
            m_sections.try_emplace(
                MeantSectionName(line.SectionName()),
                static_cast<std::size_t>(line.Line().text.data() - bytes.data()));
        }
    }
    m_reference = Section(reference);
}

SectionEntries EarlierFile::Section(std::string_view name) const {
    const auto found = m_sections.find(name);
    if (found == m_sections.end()) {
        return {};
    }
    MeantReader section(m_bytes.substr(found->second));
    section.Next();
    return SectionEntries(section);
}

bool EarlierFile::IsStale(std::string_view key, std::string_view referenceText,
                          std::string_view text, const ProtectionKeys& keys) {
    const SectionEntries::Entry* const reference = m_reference.Find(key);
    const SectionEntries::Entry* const translation = m_section.Find(key);
    std::string buffer;
    return reference != nullptr && translation != nullptr &&
           DecodedText(translation->entry, keys, buffer) == text &&
           DecodedText(reference->entry, keys, buffer) != referenceText;
}

void TranslationChecks::EnterSection(const StringsLine& header, std::string_view name,
                                     bool isRequired) {
    m_header = header;
    m_isRequired = isRequired;
    if (m_earlier != nullptr) {
        m_earlier->EnterSection(name);
    }
}

void TranslationChecks::Check(const MeantReader& line) {
    SectionEntries::Entry* const reference = m_reference.Find(line.Key());
    if (reference == nullptr) {
        m_extra.push_back({line.Line(), line.Key()});
        return;
    }
    reference->lastSeen = m_header.number;
    std::string referenceBuffer;
    std::string buffer;
    const auto referenceText = DecodedText(reference->entry, m_keys, referenceBuffer);
    const auto text = DecodedText(*line.Entry(), m_keys, buffer);
    if (referenceText && text) {
        Compare(line, *referenceText, *text);
    }
}

void TranslationChecks::Compare(const MeantReader& line, std::string_view reference,
                                std::string_view text) {
    const auto add = [&](Rule rule, const std::string& what) {
        m_findings.Add(rule, line.Line(), line.Entry()->value, line.Key(), what);
    };
    if (text.empty()) {
        if (!reference.empty()) {
            add(Rule::kEmptyText,
                "lookups answer an empty text; translate it, or remove the entry");
        }
        return;
    }
    if (const std::string difference = PlaceholderDifference(reference, text);
        !difference.empty()) {
        add(Rule::kPlaceholder, difference);
    }
    if (m_earlier != nullptr && m_earlier->IsStale(line.Key(), reference, text, m_keys)) {
        add(Rule::kStale, "the reference's text has changed since, but not this translation");
    }
    if (HasOtherEnds(reference, text)) {
        add(Rule::kOuterBlanks,
            "the blanks or line breaks at the text's ends are not those of the reference");
    }
    if (m_findings.IsOn(Rule::kEndPunctuation) &&
        EndPunctuation(reference) != EndPunctuation(text)) {
        add(Rule::kEndPunctuation, "the text does not end with the reference's punctuation");
    }
    if (std::count(reference.begin(), reference.end(), '\n') !=
        std::count(text.begin(), text.end(), '\n')) {
        add(Rule::kLineCount, "the text has more or fewer lines than the reference's");
    }
    if (reference == text) {
        add(Rule::kSameText, "the text is the same as the reference's");
    }
}

void TranslationChecks::LeaveSection() {
    AddMissingKeys();
    AddExtraKeys();
    m_missing.clear();
    m_extra.clear();
}

void TranslationChecks::AddMissingKeys() {
    for (const SectionEntries::Entry& entry : m_reference.All()) {
        if (entry.lastSeen != m_header.number) {
            m_missing.push_back(entry.key);
            const std::string what =
                "in this section, lookups answer null, not the reference's text; translate it";
            if (m_isRequired) {
                m_findings.AddError(Rule::kMissingKey, m_header, m_header.text, entry.key, what);
            } else {
                m_findings.Add(Rule::kMissingKey, m_header, m_header.text, entry.key, what);
            }
        }
    }
}

void TranslationChecks::AddExtraKeys() {
    for (const ExtraKey& extra : m_extra) {
        Nearest nearest(extra.key);
        if (m_extra.size() <= kMostGuesses) {
            for (const std::string_view key : m_missing) {
                nearest.Offer(key);
            }
        }
        m_findings.Add(Rule::kExtraKey, extra.line, extra.key, extra.key,
                       "the reference has no such key; add it there, or remove this entry" +
                           nearest.DidYouMean());
    }
}
