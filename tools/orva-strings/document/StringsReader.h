#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_STRINGSREADER_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_STRINGSREADER_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// A line of a strings file.
struct StringsLine {
    std::size_t number;       // from 0
    std::string_view text;    // as the library reads it
    std::string_view ending;  // what it drops: a carriage return, a line feed, both or neither
};

// An entry of a strings file.
struct StringsEntry {
    std::string_view key;
    std::string_view value;        // as the library reads it
    std::string_view beforeQuote;  // between the = and the first quote; not part of the value
    std::string_view afterQuote;   // after the last quote, if there are two; not part of it either
};

// The entry that a line's text makes, if any. The value is a view of the buffer, which is then
// overwritten, if it differs from what is written.
std::optional<StringsEntry> ReadEntry(std::string_view text, std::string& buffer);

// Whether a line's text makes a protected entry.
bool IsProtectedEntry(std::string_view text);

// Whether a line's text makes a section's header.
bool IsHeader(std::string_view text);

// Reads a strings file line by line. A copy goes on from the same line.
class StringsReader {
public:
    // The bytes must outlive the object and the views that it returns.
    explicit StringsReader(std::string_view bytes) : m_rest(bytes) {}

    // Goes to the next line. Returns false if no line is left.
    bool Next();

    // The functions below are about the line that Next has gone to, or an empty one if none was left.

    const StringsLine& Line() const { return m_line; }

    // Whether it is a header, which opens a section.
    bool IsHeader() const { return m_isHeader; }

    // The name of the section that it opens, if it is a header.
    std::string_view SectionName() const;

    // Whether it is a header or below one.
    bool IsInSection() const { return m_isInSection; }

    // The entry that it makes, if any: only a line below a header makes one. The value may be in
    // this object, which keeps it until this is called again.
    std::optional<StringsEntry> Entry();

private:
    std::string_view m_rest;
    std::size_t m_count = 0;
    StringsLine m_line = {};
    bool m_isHeader = false;
    bool m_isInSection = false;
    std::string m_value;
};

#endif
