#ifndef ORVALANGUAGE_TOOLS_CHECKS_MEANTREADER_H
#define ORVALANGUAGE_TOOLS_CHECKS_MEANTREADER_H

#include <optional>
#include <string>
#include <string_view>

#include "strings/Line.h"
#include "tools/orva-strings/document/LineText.h"
#include "tools/orva-strings/document/NearHeader.h"
#include "tools/orva-strings/document/StringsReader.h"

enum class LineKind {
    kBlank,
    kConflictMarker,
    kHeader,   // or what can only have been meant as one
    kComment,  // marked as one; it may be an entry all the same
    kEntry,
    kShortEntry,  // with too short a key
    kOther,
};

// The value that the library reads from an entry; in buffer if that is not what is written.
inline std::string_view ValueOf(const LineEntry& entry, std::string& buffer) {
    return entry.isQuoted ? Unescape(entry.value, buffer) : entry.value;
}

// Reads a strings file line by line as it was probably meant: without byte-order marks, with the
// headers that are nearly right, and with keys without the blanks at their ends. So one slip is not
// reported once more for every line below it.
class MeantReader {
public:
    // The bytes must outlive the object and the views that it returns.
    explicit MeantReader(std::string_view bytes) : m_lines(bytes) {}

    // Goes to the next line. Returns false if no line is left.
    bool Next();

    // The functions below are about the line that Next has gone to.

    const StringsLine& Line() const { return m_lines.Line(); }
    const StringsReader& Lines() const { return m_lines; }  // as the library reads them

    // Its text without byte-order marks.
    std::string_view Text() const { return m_text; }

    LineKind Kind() const { return m_kind; }

    // Whether it is a header, or below one.
    bool IsInSection() const { return m_isInSection; }

    // What it was probably meant as, if it is not quite a header. It may not be of kind kHeader.
    const std::optional<NearHeader>& NearlyHeader() const { return m_nearHeader; }

    // The name of the section that it opens, for kHeader: all that follows the equals sign.
    std::string_view SectionName() const { return m_text.substr(m_text.find('=') + 1); }

    // The entry that it is, for kEntry and maybe kComment.
    const std::optional<LineEntry>& Entry() const { return m_entry; }

    // That entry's key.
    std::string_view Key() const { return m_key; }

private:
    LineKind Classify();

    StringsReader m_lines;
    std::string_view m_text;
    LineKind m_kind = LineKind::kBlank;
    bool m_isInSection = false;
    std::optional<NearHeader> m_nearHeader;
    std::optional<LineEntry> m_entry;
    std::string_view m_key;
};

#endif
