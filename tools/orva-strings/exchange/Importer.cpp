#include "tools/orva-strings/exchange/Importer.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include <OrvaLanguage/KorString.h>

#include "strings/Line.h"
#include "tools/orva-strings/document/Directive.h"
#include "tools/orva-strings/document/NearHeader.h"
#include "tools/orva-strings/protection/ProtectedText.h"

namespace {

constexpr char kUnwritable[] =
    "the text can't be written so that it reads back the same, so it is not imported";

bool IsStored(const StringsEntry& entry) {
    return IsProtectedKey(entry.key.data()) && LooksStored(entry.value);
}

}  // namespace

Importer::Importer(StringsDocument& document, std::string_view bytes, StringsReader reference,
                   const LanguageCodes& codes, const ProtectionKeys& keys,
                   const ImportOptions& options)
    : m_document(document),
      m_bytes(bytes),
      m_codes(codes),
      m_keys(keys),
      m_options(options),
      m_referenceName(reference.SectionName()) {
    while (reference.Next() && !reference.IsHeader()) {
        if (const auto entry = reference.Entry();
            entry && m_positions.emplace(entry->key, m_reference.size()).second) {
            m_reference.push_back(PlaceOf(reference.Line()));
        }
    }
    StringsReader lines = document.Lines();
    while (lines.Next()) {
        m_lastLine = PlaceOf(lines.Line());
        if (lines.IsHeader()) {
            m_sections.push_back(lines);
        }
    }
}

void Importer::BeginFile(const XliffFile& file) {
    const std::optional<std::string> source = m_codes.SectionOf(file.sourceLanguage);
    if (!source || !IsName(*source, m_referenceName.c_str())) {
        throw XliffError(file.line, "the source language '" + file.sourceLanguage +
                                        "' is not that of the reference, " + m_referenceName);
    }
    if (file.targetLanguage.empty()) {
        throw XliffError(file.line, "the <file> has no target language");
    }
    const std::optional<std::string> name = m_codes.SectionOf(file.targetLanguage);
    if (!name) {
        throw XliffError(file.line, "no section has the target language '" + file.targetLanguage +
                                        "'; --code SECTION=" + file.targetLanguage +
                                        " would say which one");
    }
    if (IsName(*name, m_referenceName.c_str())) {
        throw XliffError(file.line, "the target language '" + file.targetLanguage +
                                        "' is that of the reference");
    }
    m_target = &TargetOf(*name, file.line);
}

Importer::Target& Importer::TargetOf(const std::string& name, std::size_t fileLine) {
    const auto isNamed = [&](std::string_view other) { return IsName(other, name.c_str()); };
    const auto section =
        std::find_if(m_sections.begin(), m_sections.end(),
                     [&](const StringsReader& other) { return isNamed(other.SectionName()); });
    if (section != m_sections.end()) {
        const std::size_t number = section->Line().number;
        const auto found = m_targets.find(number);
        return found != m_targets.end()
                   ? found->second
                   : m_targets.emplace(number, ReadTarget(*section)).first->second;
    }
    const auto added = std::find_if(m_newNames.begin(), m_newNames.end(), isNamed);
    const auto rank = static_cast<std::size_t>(added - m_newNames.begin()) + 1;
    // Sections to be added come after all lines.
    const std::size_t number = m_lastLine.number + rank;
    if (added == m_newNames.end()) {
        m_targets.emplace(number, NewTarget(name, fileLine));
    }
    return m_targets.at(number);
}

Importer::Target Importer::ReadTarget(StringsReader section) const {
    const std::size_t count = m_reference.size();
    Target target = {std::string(section.SectionName()),
                     0,
                     true,
                     std::vector<Place>(count),
                     std::vector<bool>(count),
                     std::vector<bool>(count)};
    Place above = PlaceOf(section.Line());
    bool isBelowHeader = IsRightBelowHeader(section, false);
    while (section.Next() && !section.IsHeader()) {
        const auto directive = ReadDirective(section.Line().text);
        if (isBelowHeader && directive && directive->name == kLanguageDirective) {
            above = PlaceOf(section.Line());  // which must stay below the header
        }
        isBelowHeader = IsRightBelowHeader(section, isBelowHeader);
        const auto entry = section.Entry();
        const auto found = entry ? m_positions.find(entry->key) : m_positions.end();
        if (found != m_positions.end() && !target.hasEntry[found->second]) {
            target.hasEntry[found->second] = true;
            target.places[found->second] = PlaceOf(section.Line());
        }
    }
    for (std::size_t i = 0; i < count; ++i) {
        if (target.hasEntry[i]) {
            above = target.places[i];
        } else {
            target.places[i] = above;
        }
    }
    return target;
}

Importer::Target Importer::NewTarget(const std::string& name, std::size_t fileLine) {
    if (!m_options.creates) {
        throw XliffError(fileLine, "there is no section " + name + "; --create adds it");
    }
    if (name.find_first_of("\r\n") != std::string::npos || MeantSectionName(name) != name) {
        throw XliffError(fileLine, "a section can't have the name " + name);
    }
    m_newNames.push_back(name);
    const std::size_t count = m_reference.size();
    return {name,
            m_newNames.size(),
            false,
            std::vector<Place>(count, m_lastLine),
            std::vector<bool>(count),
            std::vector<bool>(count)};
}

Importer::Place Importer::PlaceOf(const StringsLine& line) const {
    return {static_cast<std::size_t>(line.text.data() - m_bytes.data()), line.number};
}

StringsLine Importer::LineAt(const Place& place) const {
    StringsReader lines(m_bytes.substr(place.begin));
    lines.Next();
    StringsLine line = lines.Line();
    line.number = place.number;
    return line;
}

const std::size_t* Importer::FindPosition(const XliffUnit& unit) const {
    auto found = m_positions.find(unit.id);
    if (found == m_positions.end()) {
        found = m_positions.find(unit.resname);
    }
    return found == m_positions.end() ? nullptr : &found->second;
}

bool Importer::IsAccepted(const std::string& state) const {
    const bool isFinished = state != "new" && state.compare(0, 6, "needs-") != 0;
    const auto& accepted = m_options.acceptedStates;
    return isFinished || std::find(accepted.begin(), accepted.end(), state) != accepted.end();
}

void Importer::Take(const XliffUnit& unit) {
    const std::size_t* const position = FindPosition(unit);
    if (position == nullptr) {
        Say(Severity::kWarning, unit.line, unit.id, "the reference has no such key");
    } else if (m_target->isSeen[*position]) {
        m_hasDoubled = true;
        Say(Severity::kError, unit.line, unit.id,
            "this key comes twice for one language, so nothing is imported");
    } else {
        m_target->isSeen[*position] = true;
        if (unit.target && !unit.target->empty()) {
            TakeText(unit, *position);
        }
    }
}

// Takes a translation that is there.
void Importer::TakeText(const XliffUnit& unit, std::size_t position) {
    const StringsLine line = LineAt(m_reference[position]);
    const StringsEntry reference = *ReadEntry(line.text, m_value);
    const bool isStored = IsStored(reference);
    const std::optional<std::string> source = TextOf(reference);
    if (!IsAccepted(unit.state)) {
        ++m_counts.unfinished;
    } else if (!unit.lost.empty()) {
        const std::string text = "the inline element <" + unit.lost +
                                 "> stands for what a text can't hold, so the text is not imported";
        Say(Severity::kError, unit.line, reference.key, text.c_str());
    } else if (!source) {
        Say(Severity::kError, unit.line, reference.key,
            "the reference's value looks stored but does not decode: it was damaged or made with "
            "another key");
    } else if (unit.source.value_or("") != *source && !m_options.acceptsStale) {
        Say(Severity::kWarning, unit.line, reference.key,
            "passed over, since its source is no longer the text of the reference");
    } else if (m_target->hasEntry[position]) {
        ChangeEntry(unit, LineAt(m_target->places[position]), isStored);
    } else {
        AddEntry(unit, position, isStored);
    }
}

void Importer::ChangeEntry(const XliffUnit& unit, const StringsLine& line, bool isStored) {
    const StringsEntry entry = *ReadEntry(line.text, m_value);
    const std::optional<std::string> text = TextOf(entry);
    if (!text) {
        Say(Severity::kError, unit.line, entry.key,
            "the value looks stored but does not decode: it was damaged or made with another key");
        return;
    }
    if (*text == *unit.target) {
        ++m_counts.same;
        return;
    }
    AddChange({PlaceOf(line), 0, 0, false, ValueOf(*unit.target, isStored || IsStored(entry))},
              unit.line);
}

void Importer::AddEntry(const XliffUnit& unit, std::size_t position, bool isStored) {
    const std::string_view key = SplitEntry(LineAt(m_reference[position]).text)->key;
    if (!m_options.creates) {
        Say(Severity::kWarning, unit.line, key, "the section lacks this key; --create adds it");
        return;
    }
    const std::optional<std::string> line =
        m_document.NewEntry(key, ValueOf(*unit.target, isStored));
    if (!line) {
        Say(Severity::kError, unit.line, key, kUnwritable);
        return;
    }
    const Place& place = m_target->places[position];
    if (!m_target->hasHeader) {
        AddChange({place, m_target->rank, 0, true, m_document.NewHeader(m_target->name)},
                  unit.line);
        m_target->hasHeader = true;
    }
    AddChange({place, m_target->rank, position + 1, true, *line}, unit.line);
    ++m_counts.added;
}

// Nothing if the value looks stored but does not decode.
std::optional<std::string> Importer::TextOf(const StringsEntry& entry) const {
    return IsStored(entry) ? DecodeProtectedText(m_keys, entry.value)
                           : std::optional(std::string(entry.value));
}

std::string Importer::ValueOf(const std::string& text, bool isStored) const {
    return isStored ? EncodeProtectedText(m_keys, text) : text;
}

void Importer::AddChange(Change change, std::size_t unitLine) {
    change.document = m_findings.size() - 1;
    change.unitLine = unitLine;
    m_changes.push_back(std::move(change));
}

void Importer::Say(Severity severity, std::size_t line, std::string_view key, const char* text) {
    m_findings.back().push_back({severity, line, std::string(key) + ": " + text});
}

void Importer::Apply() {
    const auto place = [](const Change& change) {
        return std::tuple(change.place.begin, change.rank, change.position);
    };
    std::sort(m_changes.begin(), m_changes.end(),
              [&](const Change& a, const Change& b) { return place(a) < place(b); });
    for (const Change& change : m_changes) {
        const StringsLine line = LineAt(change.place);
        if (change.isNew) {
            m_document.InsertBelow(line, change.text);
        } else if (m_document.SetValue(line, change.text) ||
                   m_document.SetUnquoted(line, change.text)) {
            ++m_counts.changed;
        } else {
            const std::string key(SplitEntry(line.text)->key);
            m_findings[change.document].push_back(
                {Severity::kError, change.unitLine, key + ": " + kUnwritable});
        }
    }
}
