#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_FIXEDSTRINGS_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_FIXEDSTRINGS_H

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "tools/orva-strings/cli/Finding.h"
#include "tools/orva-strings/document/StringsReader.h"
#include "tools/orva-strings/system/Files.h"

// What a line becomes.
struct FixedLine {
    StringsLine line;  // as it is, but if it ended in a carriage return alone, with a line feed
    std::string_view text;  // as it should be
    bool isDuplicate;       // it repeats an earlier entry of its section, and goes

    bool IsChanged() const { return isDuplicate || text != line.text; }
};

// A strings file in which everything is mended that has exactly one right answer: byte-order marks,
// headers, blanks beside keys, repeated entries, and carriage returns as the only line ends. All
// other bytes stay, and mending the result changes nothing.
class FixedStrings {
public:
    // Keeps a view of the bytes, so they must outlive the object, and must not change.
    explicit FixedStrings(const std::string& bytes);
    explicit FixedStrings(std::string&&) = delete;
    FixedStrings(const FixedStrings&) = delete;
    FixedStrings& operator=(const FixedStrings&) = delete;

    // Why the file must not be changed by anything but a person, if that is so.
    std::optional<Finding> Obstacle() const;

    // Whether carriage returns were the only line ends, and become line feeds.
    bool HasNewLineEnds() const { return !m_converted.empty(); }

    // Calls visit with each line, in order. The texts are valid until it returns.
    void VisitLines(const std::function<void(const FixedLine&)>& visit) const;

    // Calls take with the bytes of the mended file, in pieces of at most 64 KiB.
    void WriteInPieces(const TakePiece& take) const;

private:
    std::string m_converted;  // the bytes with line feeds, if that makes a difference
    std::string_view m_bytes;
};

#endif
