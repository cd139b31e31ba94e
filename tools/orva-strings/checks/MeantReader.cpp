#include "tools/orva-strings/checks/MeantReader.h"

#include "tools/orva-strings/Ascii.h"

bool MeantReader::Next() {
    if (!m_lines.Next()) {
        return false;
    }
    m_text = WithoutByteOrderMarks(m_lines.Line().text);
    m_nearHeader.reset();
    m_entry.reset();
    m_kind = Classify();
    m_key = m_entry ? TrimBlanks(m_entry->key) : std::string_view();
    m_isInSection = m_isInSection || m_kind == LineKind::kHeader;
    return true;
}

namespace {

// Whether a section's name begins with an ASCII letter and has no quotes, unlike most texts.
bool IsWord(std::string_view name) {
    name = TrimBlanks(name);
    const char first = name.empty() ? '\0' : name.front();
    return IsLetter(first) && name.find('"') == std::string_view::npos;
}

}  // namespace

LineKind MeantReader::Classify() {
    if (IsHeader(m_text)) {
        return LineKind::kHeader;
    }
    if (IsConflictMarker(m_text)) {
        return LineKind::kConflictMarker;
    }
    m_nearHeader = FindNearHeader(m_text);
    if (m_nearHeader && (m_nearHeader->isUnmistakable || IsWord(SectionName()))) {
        return LineKind::kHeader;
    }
    m_entry = SplitEntry(m_text);
    if (IsCommentLike(m_text)) {
        return LineKind::kComment;
    }
    if (m_entry) {
        return LineKind::kEntry;
    }
    if (TrimBlanks(m_text).empty()) {
        return LineKind::kBlank;
    }
    const std::size_t equals = m_text.find('=');
    const bool hasKey =
        equals != std::string_view::npos && !TrimBlanks(m_text.substr(0, equals)).empty();
    return hasKey ? LineKind::kShortEntry : LineKind::kOther;
}
