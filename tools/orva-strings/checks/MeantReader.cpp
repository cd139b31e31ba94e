#include "tools/orva-strings/checks/MeantReader.h"

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

LineKind MeantReader::Classify() {
    if (IsHeader(m_text)) {
        return LineKind::kHeader;
    }
    if (IsConflictMarker(m_text)) {
        return LineKind::kConflictMarker;
    }
    m_nearHeader = FindNearHeader(m_text);
    const bool hasQuote = m_text.find('"') != std::string_view::npos;
    if (m_nearHeader && (m_nearHeader->isUnmistakable || !hasQuote)) {
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
